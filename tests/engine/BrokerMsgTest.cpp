#include "Import/Btd/BrokerMsg.h"

#include "Import/Dtd/DTDMsg.h"
#include "Import/XmlData/XMLDataMsg.h"
#include "support/Importing.h"

#include <set>
#include <tuple>

namespace {

const auto type = [](const CString& name, const CString& content) {
    return "<T NAME='" + name + "'>" + content + "</T>";
};

const CString kLong(300, 'n');

const Case kDocuments[] = {
    {"WorkedExample",
     type("\\sys\\xml\\Order",
          "<ROW><FIELD NAME='id' TYPE='Number'/><FIELD NAME='item' TYPE='\\sys\\xml\\t_item'/></ROW>") +
         type("\\sys\\xml\\t_item", "<TABLE><COMPONENT TYPE='\\sys\\xml\\item'/></TABLE>"),
     "t_item:t=\\sys\\xml\\item() Order:R(id:O=Number item:O=\\sys\\xml\\t_item)"},
    {"Array", type("A", "<ARRAY SIZE='12'><COMPONENT TYPE='String'/></ARRAY>"), "A:A[12]()"},
    {"Enumeration", type("E", "<ENUM><CONSTANT NAME='a'/><CONSTANT NAME='b'/></ENUM>"), "E:E(a:S b:S)"},
    {"EnumerationsWithTheSameConstants",
     type("E", "<ENUM><X NAME='a'/><X NAME='b'/></ENUM>") + type("F", "<ENUM><X NAME='a'/><X NAME='b'/></ENUM>"),
     "F:E(a:S b:S) E:E(a:S b:S)"},
    {"EnumerationsOfOneNameInTwoFolders",
     type("\\a\\E", "<ENUM><X NAME='a'/></ENUM>") + type("\\b\\E", "<ENUM><X NAME='a'/></ENUM>"),
     "E:E(a:S) E:E(a:S) t_E:t(E:E)"},
    {"EnumerationBesideATypeCalledLikeItsConstant",
     type("\\a\\E", "<ENUM><X NAME='a'/></ENUM>") + type("\\a\\E.a", "<ROW/>"), "E.a:R() E:E(a:S)"},
    {"EnumerationsWithDots",
     type("\\a\\E", "<ENUM><X NAME='a.b'/></ENUM>") + type("\\a\\E.a", "<ENUM><X NAME='b'/></ENUM>"),
     "E.a:E(b:S) E:E(a.b:S)"},
    {"EnumerationBesideATypeWithoutAFolder", type("E", "<ENUM><X NAME='a'/></ENUM>") + type("\\E.a", "<ROW/>"),
     "\\E.a:R() E:E(a:S)"},
    {"LongConstants", type("E", "<ENUM><X NAME='" + kLong + "'/><X NAME='b'/><X NAME='b'/></ENUM>"),
     "E:E(" + kLong + ":S b:S b:S)"},
    {"ConstantsWithoutAName", type("E", "<ENUM><X NAME='a'/><X/><X NAME='b'/><X/></ENUM>"), "E:E(a:S :S b:S :S)"},
    {"AnyTagServes", type("R", "<ROW><X NAME='a' TYPE='String'/><Y NAME='b' TYPE='Time'/></ROW>"),
     "R:R(a:O=String b:O=Time)"},
    {"ContentTagsAreExact", type("R", "<row><X NAME='a'/></row><x:ENUM/><p/>"), "R:R()"},
    {"LastContentDecides", type("R", "<ROW><X NAME='a' TYPE='String'/></ROW><ENUM><X NAME='b'/></ENUM>"),
     "R:E(a:O=String b:S)"},
    {"TableTakesItsFirstChild", type("T", "<TABLE TYPE='x'><!--c--><C TYPE='String'/></TABLE>"), "T:t()"},
    {"AttributesAreExact", type("R", "<ROW><X p:NAME='a' name='b' NAME='c' xmlns:p='u'/></ROW>"), "R:R(c:O)"},
    {"FieldTwiceRepeats", type("R", "<ROW><X NAME='a' TYPE='String'/><X NAME='a' TYPE='String'/></ROW>"),
     "t_a:t=String(a:O=String) R:R(t_a:t=String a:O=String)"},
    {"SameNameInTwoFoldersRepeats", type("\\a\\R", "<ROW/>") + type("\\b\\R", "<ROW/>"), "R:R() t_R:t(R:R)"},
    {"TypeWithoutContentEndsTheImport", type("R", "") + type("S", "<ROW/>"), "R:R()"},
    {"CommentEndsTheImport", type("R", "<ROW/>") + "<!--c--><?p i?>" + type("S", "<ROW/>"), ":R() R:R()"},
    {"TextEndsTheImport", "text" + type("S", "<ROW/>"), ":R()"},
};

class Broker : public Importing<BrokerMessage>
{};

TEST_F(Broker, LongRecordsAreSearched)
{
    CString fields, out = "t_a:t=String(a:O=String) R:R(t_a:t=String";
    for (int count = 1; count <= 1'000; ++count) {
        fields += "<X NAME='a' TYPE='String'/>";
        out += count == 1 ? "" : " a:O=String";
        if (count % 100 == 0) {
            EXPECT_EQ(typesOfFile("<x>" + type("R", "<ROW>" + fields + "</ROW>") + "</x>"), out + ")");
        }
    }
}

TEST_F(Broker, GivesTypes)
{
    for (const Case& row : kDocuments)
        EXPECT_EQ(typesOfFile("<p:Main xmlns:p='u'>\r\n" + row.in + "</p:Main>"), row.out) << row;
    EXPECT_EQ(message.queryMainTypeName(), "Main");
}

TEST_F(Broker, SplitsANameAtItsLastBackslash)
{
    for (const auto& [full, path, name] :
         {std::tuple("\\sys\\orders\\Order", "\\sys\\orders\\", "Order"), std::tuple("Order", "\\", "Order"),
          std::tuple("\\Order", "\\", "\\Order"), std::tuple("a\\", "a\\", ""), std::tuple("", "\\", "")}) {
        ASSERT_EQ(import("<m>" + type(full, "<ROW><X NAME='f'/></ROW>") + "</m>") + message.beginEnum(), 2);
        const Element* element = message.enumNext();
        EXPECT_EQ(element->queryPath() + "|" + element->queryName(), CString(path) + "|" + name) << full;
        EXPECT_EQ((*element->queryChildren().begin())->queryPath(), path) << full;
    }
}

TEST_F(Broker, FailsWithoutAWordOrWithTheParsers)
{
    EXPECT_EQ(import("<m> </m>"), 0);
    EXPECT_THAT(boxes.take(), testing::IsEmpty());
    EXPECT_EQ(import("<m>" + type("R", "<ROW/>") + "\n</n>"), 0);
    EXPECT_THAT(boxes.take(), testing::ElementsAre("Error on line 2, column 5.\nError text is 'Opening and ending tag "
                                                   "mismatch: m line 1 and n'."));
    EXPECT_EQ(message.beginEnum(), 0);
}

std::multiset<CString> documentsOf(MsgBase& message)
{
    std::multiset<CString> documents;
    message.beginEnum();
    for (CString text; Element* element = message.enumNext(); documents.insert(text))
        element->asXML(text);
    return documents;
}

TEST_F(Broker, KeepsTheGeneratedDescriptionOfAnEmptyName)
{
    const CString document = "<BROKERTYPEDESCRIPTION NAME=\"\\a\\E\"><ENUM><CONSTANT NAME=\"\" "
                             "DESCRIPTION=\" (Automatically created)\"/></ENUM></BROKERTYPEDESCRIPTION>";
    import("<m>" + document + "</m>");
    EXPECT_THAT(documentsOf(message), testing::ElementsAre(document));
}

// A written document can be imported again, and gives the same documents under the same main element.
TEST_F(Broker, RoundTripKeepsEveryDocument)
{
    DTDMessage dtd;
    dtd.parseFile(folder.write("x.dtd", "<!ELEMENT order (id, item+, item2*)><!ELEMENT item (#PCDATA | order)*>"
                                        "<!ATTLIST item no CDATA #IMPLIED>"),
                  "\\sys\\");
    XMLDataMessage xml;
    xml.parseFile(folder.write("x.xml", "<o a='1'><b/><b/><c.d><e \xC3\xB6='2'/><e/></c.d></o>"), "\\sys\\");
    import("<m>" + type("a\\b\\A&lt;&quot;&#10;", "<ARRAY/>") + type("a\\B", "<ARRAY SIZE='7'/>") +
           "<T NAME='a\\E' DESCRIPTION='e &amp; f'><ENUM><C NAME='x' DESCRIPTION='y'/><C/></ENUM></T></m>");
    for (MsgBase* first : {static_cast<MsgBase*>(&dtd), static_cast<MsgBase*>(&xml), static_cast<MsgBase*>(&message)}) {
        CString text;
        first->getXML(text);
        BrokerMessage second;
        EXPECT_EQ(second.parseFile(folder.write("y.xml", text), "\\other\\"), 1);
        EXPECT_EQ(documentsOf(second), documentsOf(*first));
        EXPECT_EQ(second.queryMainTypeName(), first->queryMainTypeName());
    }
}

} // namespace
