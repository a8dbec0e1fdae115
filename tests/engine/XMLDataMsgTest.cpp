#include "Import/XmlData/XMLDataMsg.h"

#include "Resources/StringTable.h"
#include "Xml/XMLDoc.h"
#include "support/Importing.h"

#include <random>

namespace {

const Case kInstances[] = {
    {"WorkedExample", "<order id='1'>\n <item>a</item>\n <item>b</item>\n <note/>\n</order>",
     "t_item:t=String(item:S=String) order:R(order_id:S t_item:t=String note:S)"},
    {"LeafRootIsNoType", "<a>text<!--c--><?p i?></a>", ""},
    {"AttributesMakeARecord", "<a b='1'/>", "a:R(a_b:S)"},
    {"FieldsAreTheUnionInOrder", "<r><a y='1'><b/></a><a x='2'><c/><b/></a></r>",
     "a:R(a_y:S b:S a_x:S c:S) t_a:t(a:R) r:R(t_a:t)"},
    {"TwiceUnderOneIsEnough", "<r><a><b/></a><c><a><b/><b/></a></c></r>",
     "t_b:t=String(b:S=String) a:R(t_b:t=String) c:R(a:R) r:R(a:R c:R)"},
    {"CountsGoOnBehindANamesakeInside", "<a><b/><a><b/></a><b/></a>", "t_b:t=String(b:S=String) a:R(t_b:t=String a:R)"},
    {"TheSecondParentKeepsThePlainElement", "<r><a><b/><b/></a><c><b/><b/></c></r>",
     "c:R(b:S=String) t_b:t=String(b:S=String) a:R(t_b:t=String) r:R(a:R c:R)"},
    {"PrefixesFallAway", "<p:r xmlns:p='u' xmlns:q='v'><p:a/><q:a q:b='1'/></p:r>", "a:R(a_b:S) t_a:t(a:R) r:R(t_a:t)"},
    // Attribute keys end in the sequence number of the element's parent, so keys can collide.
    {"AttributeKeyTakesTheChilds", "<r b='1'><b/><b/></r>", "r:R(r_b:S b:S)"},
    {"ChildKeyTakesTheAttributes", "<a><b/><a b='1'/></a>", "t_b:t=String(b:S=String) a:R(t_b:t=String a:R a_b:S)"},
    {"EntitiesAndDefaultsCount", "<!DOCTYPE r [<!ENTITY e '<a/><a/>'><!ATTLIST r d CDATA 'x'>]><r>&e;</r>",
     "t_a:t=String(a:S=String) r:R(r_d:S t_a:t=String)"},
    {"Latin1", "<?xml version='1.0' encoding='ISO-8859-1'?><r><\xF6/></r>", "r:R(\xC3\xB6:S)"},
};

class XMLData : public Importing<XMLDataMessage>
{};

TEST_F(XMLData, GivesTypes)
{
    for (const Case& row : kInstances)
        EXPECT_EQ(typesOfFile(row.in), row.out) << row;
}

// Repetitions that are single fields, because another record has the table, and attributes that share an element.
const Case kLosses[] = {
    {"InOneRecord", "<r><a><b/><b/></a><a><b/><b/></a></r>", ""},
    {"InASecondRecord", "<r><a><b/><b/></a>\n<c><b/>\n <b/><b/></c></r>", "3:2 b"},
    {"BehindANamesakeInside", "<r><c><b/><b/></c><a><b/><a><b/></a>\n<b/></a></r>", "2:1 b"},
    {"OnceBesideAnAttribute", "<r b='1'><b/></r>", ""},
    {"WithTheTablesNameTaken", "<r><b/><b/><t_b/></r>", "1:8 b"},
    {"OfAnElementCalledLikeAnAttribute", "<r><x b='1'/><x_b/><x_b/></r>", "1:20 x_b"},
    {"AttributeCalledLikeARecord", "<r><x_b><c/></x_b>\n<x b='1'/></r>", "2:1 x_b"},
    {"OfAChildCalledLikeTheRootsAttribute", "<r b='1'><b/><b/></r>", "1:14 b"},
    {"InventedByAnAttributeOfItsOwnName", "<r><b>\n<b b='1'/></b></r>", "2:1 b"},
    {"TextBesideAttributes", "<r>\n<a b='1'> 9</a>\n<a>8</a></r>", "2:1 a"},
    {"TextBesideChildren", "<r><a>8</a>\n<a><![CDATA[9]]><b/></a></r>", "1:4 a"},
    {"AttributeCalledLikeAChild", "<r><x b='1'/><y/><x><x_b/></x></r>", "1:21 x_b"},
    {"AttributeCalledLikeAnElement", "<r><x_b/><x b='1'/><x b='1'/></r>", ""},
    {"AttributesOfSeveralNamespaces", "<r>\n<a xmlns:n='u' n:k='1'/>\n<a k='1'/>\n<a k='1'/></r>", "3:1 a_k"},
    {"RecordsOfSeveralNamespaces", "<r><x><b/></x><c>\n<x xmlns='u'><b/></x></c></r>", "2:1 x"},
    {"FieldsOfSeveralNamespaces", "<r><n:x/>\n<m:x/>\n<c xmlns='u'><x/></c></r>", "2:1 x"},
    {"OneNamespaceByTwoPrefixes", "<r xmlns:n='u'><n:x n:k='1'/><x xmlns='u' xmlns:m='u' m:k='1'/></r>", ""},
};

TEST_F(XMLData, TellsWhatTheModelDrops)
{
    for (const Case& row : kLosses) {
        import(row.in);
        CString told;
        for (const auto& entry : message.queryReport().queryEntries(SourceReport::loss))
            told +=
                std::to_string(entry.place.line) + ":" + std::to_string(entry.place.column) + " " + CString(entry.name);
        EXPECT_EQ(told, row.out) << row;
    }
}

TEST_F(XMLData, NamesMainTypeAndFolderAfterTheRootsTag)
{
    for (const auto& [basePath, expected] :
         {std::pair("", "\\p:order\\"), std::pair("b", "b\\p:order\\"), std::pair("\\b\\", "\\b\\p:order\\")}) {
        import("<p:order><a/></p:order>", basePath);
        EXPECT_EQ(message.queryMainTypeName(), "p:order");
        ASSERT_EQ(message.beginEnum(), 1);
        const Element* order = message.enumNext();
        EXPECT_EQ(order->queryPath() + order->queryDescription(), CString(expected) + "order (Automatically created)");
    }
}

TEST_F(XMLData, FaultAtTheLastByteLeavesNothing)
{
    ASSERT_EQ(import("<a b='1'/>"), 1);
    EXPECT_EQ(import("<a b='1'>\n<c/></a>\n<"), 0);
    EXPECT_EQ(message.beginEnum(), 0);
    EXPECT_EQ(message.parseFile(folder.path("none"), "\\"), 0);
    EXPECT_THAT(
        boxes.take(),
        testing::ElementsAre("Error on line 3, column 1.\nError text is 'Extra content at the end of the document'.",
                             "Error on line 0, column 0.\nError text is 'No such file or directory'."));
}

// Few names, so that they collide in every way: nested in themselves, as attributes, with dots and underscores.
constexpr const char* kNames[] = {"a", "b", "a.b", "a_b", "t_a", "b.a", "t_b"};

// A reference implementation: walks the tree and declares every usage.
class LiteralWalk : public MsgBase
{
public:
    LiteralWalk() : MsgBase(1) {}
    int parse(const CString& source, const CString& basePath, const CString&) override
    {
        XmlDocument document;
        document.setFile(source);
        root = document.getElement().nodeName();
        unsigned counter = 0;
        visit(document.getElement(), basePath + root + "\\", nullptr, counter, 0);
        return 1;
    }
    int isFileMode() const override { return 1; }
    CString queryMainTypeName() const override { return root; }
    MsgUIDescriptor* queryDescriptor() const override { return &XMLDataMessage::m_descr; }

private:
    void visit(IXMLDOMNode node, const CString& path, Element* parent, unsigned& counter, unsigned parentSequence)
    {
        const unsigned sequence = counter++;
        const CString name(node.baseName()), number = "." + std::to_string(parentSequence);
        if (name.empty())
            return;
        const auto described = [](const CString& what) { return fillText(loadText(IDS_AUTOMATIC), what); };
        Element* element = addElement((parent ? parent->queryName() : CString()) + "." + name + number, path, name,
                                      described(name), Element::typeString, parent);
        for (const CString attribute : kNames) { // at most one has the name
            if (!node.attributes().getNamedItem(attribute))
                continue;
            addAttribute(name + "." + attribute + number, path, attribute, described(name + "_" + attribute),
                         Element::typeString, element);
        }
        for (IXMLDOMNode child = node.firstChild(); child; child = child.nextSibling())
            visit(child, path, element, counter, sequence);
    }

    CString root;
};

CString randomElement(std::mt19937& random, int depth)
{
    const auto name = [&random] { return CString(kNames[random() % std::size(kNames)]); };
    const CString tag = name();
    CString text = "<" + tag;
    if (random() % 2)
        text += " " + name() + "='1'";
    text += ">";
    for (unsigned count = depth > 5 ? 0 : random() % 4; count > 0; --count)
        text += random() % 5 == 0 ? "t" : randomElement(random, depth + 1);
    return text + "</" + tag + ">";
}

TEST_F(XMLData, GivesWhatTheWholeWalkGives)
{
    std::mt19937 random(1);
    LiteralWalk walk;
    for (int i = 0; i < 500; ++i) {
        const CString document = randomElement(random, 0);
        const CString types = typesOfFile(document);
        walk.parseFile(folder.path("x"), "\\b\\");
        EXPECT_EQ(types, typesOf(walk)) << document;
    }
}

} // namespace
