#include "Xml/Dom.h"

#include "Xml/XmlParser.h"
#include "support/Importing.h"

namespace {

using namespace std::string_literals;

// Returns the document as XML text, or its error as "LINE:COLUMN reason".
std::string loaded(const std::string& bytes)
{
    const TempDir folder;
    const IXMLDOMDocument document = IXMLDOMDocument::create();
    if (document.load(folder.write("x.xml", bytes)))
        return document.xml();
    const IXMLDOMParseError& error = document.parseError();
    return std::to_string(error.line) + ":" + std::to_string(error.linepos) + " " + error.reason;
}

std::string utf16(const std::string& ascii, bool bigEndian)
{
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : ascii)
        bytes += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return bytes;
}

const Case kLoads[] = {
    // Encodings.
    {"Utf8", "<a b='\xC3\xB6'>\xE2\x82\xAC</a>", "<a b=\"\xC3\xB6\">\xE2\x82\xAC</a>"},
    {"Utf8WithMark", "\xEF\xBB\xBF<?xml version='1.0'?><a>\xC3\xB6</a>", "<a>\xC3\xB6</a>"},
    {"Utf16Little", utf16("<a>x</a>", false), "<a>x</a>"},
    {"Utf16Big", utf16("<?xml version='1.0' encoding='UTF-16'?><a>x</a>", true), "<a>x</a>"},
    {"Latin1", "<?xml version='1.0' encoding='ISO-8859-1'?><\xF6>\x80</\xF6>", "<\xC3\xB6>\xC2\x80</\xC3\xB6>"},
    {"Windows1252", "<?xml version='1.0' encoding='windows-1252'?><a>\x80\x96</a>", "<a>\xE2\x82\xAC\xE2\x80\x93</a>"},
    // White space.
    {"BlankTextIsDropped", "<a> <b>\n</b>\t<c/> x </a>", "<a><b/><c/> x </a>"},
    {"SpaceIsPreserved", "<a xml:space='preserve'> <b/></a>", "<a xml:space=\"preserve\"> <b/></a>"},
    {"PreservedFurtherIn", "<a xml:space='preserve'><b xml:space='default'> </b><c> </c></a>",
     "<a xml:space=\"preserve\"><b xml:space=\"default\"/><c> </c></a>"},
    {"PreservedByDefault", "<!DOCTYPE a [<!ATTLIST a xml:space CDATA 'preserve'>]><a> </a>",
     "<a xml:space=\"preserve\"> </a>"},
    {"CdataStaysBlank", "<a>x<![CDATA[ ]]></a>", "<a>x<![CDATA[ ]]></a>"},
    {"LineEndsAreOne", "<a>1\r\n2\r3</a>", "<a>1\n2\n3</a>"},
    // Internal subset.
    {"EntityWithElements", "<!DOCTYPE a [<!ENTITY e 'x<b c=\"1\"/>y'>]><a>1&e;2&e;</a>",
     "<a>1x<b c=\"1\"/>y2x<b c=\"1\"/>y</a>"},
    {"EntityInAttribute", "<!DOCTYPE a [<!ENTITY e 'x&#38;#38;y'>]><a b='&e;'/>", "<a b=\"x&amp;y\"/>"},
    {"DefaultsComeLast",
     "<!DOCTYPE a [<!ATTLIST a d CDATA 'def' c CDATA #FIXED 'fix' i CDATA #IMPLIED>]><a x='1' c='fix'/>",
     "<a x=\"1\" c=\"fix\" d=\"def\"/>"},
    {"NotesOfTheSubsetAreNoNodes", "<!DOCTYPE a [<!--c--><?p i?>]><!--d--><a/>", "<!--d--><a/>"},
    {"UnreadSubsetMayDeclare", "<!DOCTYPE a SYSTEM 'none.dtd'><a b='&u;'>1&u;2</a>", "<a b=\"\">12</a>"},
    {"UndeclaredParameterEntityMayDeclare", "<!DOCTYPE a [%p; <!ENTITY e 'x'>]><a>&e;1&u;2</a>", "<a>x12</a>"},
    // Names.
    {"NamespaceDeclarationsAreNone", "<p:a xmlns:p='u' xmlns='v' p:b='1'/>", "<p:a p:b=\"1\"/>"},
    {"UndeclaredPrefix", "<p:a q:b='1'/>", "<p:a q:b=\"1\"/>"},
    // Writing.
    {"ValuesAreEscaped", "<a b='&lt;&gt;&amp;&quot;&#9;&#10;&#13;'/>", "<a b=\"&lt;&gt;&amp;&quot;&#9;&#10;&#13;\"/>"},
    {"TextIsEscaped", "<a>&lt;&gt;&amp;\"\t&#13;</a>", "<a>&lt;&gt;&amp;\"\t&#13;</a>"},
    {"InstructionsAndComments", "<?i?><a><?t d ?><!-- c --></a>", "<?i?><a><?t d ?><!-- c --></a>"},
    // The first error with its place.
    {"TheCascadeIsLeftOut", "<a>\n\n  <b></c>\n<d e=1/></a>", "3:10 Opening and ending tag mismatch: b line 3 and c"},
    {"UndeclaredPrefixIsNotTheFault", "<p:a>\n<&></p:a>", "2:2 StartTag: invalid element name"},
    {"UndeclaredParameterEntityOfAStandaloneDocument", "<?xml version='1.0' standalone='yes'?><!DOCTYPE a [%p;]><a/>",
     "1:55 PEReference: %p; not found"},
    {"UnknownEntity", "<a>\n&e;</a>", "2:4 Entity 'e' not defined"},
    {"FaultInsideAnEntity", "<!DOCTYPE a [<!ENTITY e '<b>'>]>\n<a>\n\n&e;</a>",
     "4:4 Premature end of data in tag b line 1"},
    {"Empty", "", "1:1 Document is empty"},
    {"BytesOutOfEncoding", "<a>\n\xE9</a>",
     "2:1 Input is not proper UTF-8, indicate encoding !\nBytes: 0xE9 0x3C 0x2F 0x61"},
    {"OverlongUtf8", "<a>\n\xC0\xBC</a>",
     "2:1 Input is not proper UTF-8, indicate encoding !\nBytes: 0xC0 0xBC 0x3C 0x2F"},
    {"OverlongUtf8OfThreeBytes", "<a>\n\xE0\x80\xBC</a>",
     "2:1 Input is not proper UTF-8, indicate encoding !\nBytes: 0xE0 0x80 0xBC 0x3C"},
    {"OverlongUtf8OfFourBytes", "<a>\n\xF0\x80\x80\xBC</a>",
     "2:1 Input is not proper UTF-8, indicate encoding !\nBytes: 0xF0 0x80 0x80 0xBC"},
    {"BytesOutOfEncodingBehindTheRoot", "<?xml version='1.0' encoding='US-ASCII'?><a/>\n\xE9",
     "2:1 Extra content at the end of the document"},
    {"NulBehindTheRoot", "<a/>\n\0"s, "2:1 Extra content at the end of the document"},
    {"NulInside", "<a>\0</a>"s, "1:4 Premature end of data in tag a line 1"},
    {"BytesWindows1252Lacks", "<?xml version='1.0' encoding='windows-1252'?><a>\x81</a>",
     "1:44 input conversion failed due to input error, bytes 0x81 0x3C 0x2F 0x61"},
    {"UnknownEncoding", "<?xml version='1.0' encoding='none'?><a/>", "1:36 Unsupported encoding none"},
};

TEST(DomLoad, GivesExactly)
{
    for (const Case& row : kLoads)
        EXPECT_EQ(loaded(row.in), row.out) << row;
}

TEST(DomLoad, TellsTheSystemsReason)
{
    const TempDir folder;
    const IXMLDOMDocument document = IXMLDOMDocument::create();
    for (const auto& [path, reason] :
         {std::pair(folder.path("none"), "No such file or directory"), std::pair(folder.path(), "Is a directory")}) {
        EXPECT_FALSE(document.load(path));
        EXPECT_EQ(document.parseError().reason, reason) << path;
        EXPECT_EQ(document.parseError().line + document.parseError().linepos, 0);
    }
}

class DomWalk : public testing::Test
{
protected:
    IXMLDOMElement load(const std::string& bytes)
    {
        EXPECT_TRUE(document.load(folder.write("x.xml", bytes))) << document.parseError().reason;
        return document.documentElement();
    }

    TempDir folder;
    IXMLDOMDocument document = IXMLDOMDocument::create();
};

TEST_F(DomWalk, NodesAnswer)
{
    const IXMLDOMElement root = load("<p:a xmlns:p='u' p:x='1' x='2'>t<b/><!--c--><?i d?><![CDATA[e]]></p:a>");
    EXPECT_EQ((std::vector{root.nodeName(), root.baseName(), root.nodeValue()}),
              (std::vector<std::string_view>{"p:a", "a", ""}));
    std::string nodes;
    IXMLDOMNodeList children = root.childNodes();
    for (IXMLDOMNode node = children.nextNode(); node; node = children.nextNode())
        nodes += std::string(node.nodeName()) + "|" + std::string(node.baseName()) + "|" +
                 std::string(node.nodeValue()) + " ";
    EXPECT_EQ(nodes, "#text||t b|b| #comment||c i||d #cdata-section||e ");
    const IXMLDOMNamedNodeMap attributes = root.attributes();
    EXPECT_EQ(attributes.getNamedItem("x").nodeValue(), "2");
    EXPECT_EQ(attributes.getNamedItem("p:x").baseName(), "x");
    EXPECT_FALSE(attributes.getNamedItem("xmlns:p") || attributes.getNamedItem("x").nextSibling() ||
                 attributes.getNamedItem("x").firstChild());
    EXPECT_THROW(attributes.getNamedItem("xmlns:p").nodeName(), ComError);
}

TEST_F(DomWalk, ANodeIsPutInPlaceOnceInItsOwnDocument)
{
    const IXMLDOMDocument other = IXMLDOMDocument::create();
    const IXMLDOMElement root = load("<a x='1'>t</a>"), made = document.createElement("b");
    root.appendChild(made).appendChild(document.createElement("c"));
    for (const auto& [parent, child] : {std::pair<IXMLDOMNode, IXMLDOMNode>(root, made),
                                        {root, root.firstChild()},
                                        {root, {}},
                                        {root, other.createElement("d")},
                                        {root.firstChild(), document.createElement("d")},
                                        {root.attributes().getNamedItem("x"), document.createElement("d")}})
        EXPECT_THROW(parent.appendChild(child), ComError);
    const IXMLDOMElement inner = document.createElement("e"), outer = document.createElement("f");
    outer.appendChild(inner);
    EXPECT_THROW(inner.appendChild(outer), ComError);
    EXPECT_THROW(document.appendChild(outer), ComError) << "a second root";
    EXPECT_EQ(document.xml(), "<a x=\"1\">t<b><c/></b></a>");
}

TEST_F(DomWalk, BuildsADocument)
{
    EXPECT_EQ(document.xml(), "");
    const IXMLDOMElement root = document.createElement("r");
    EXPECT_FALSE(document.documentElement());
    document.appendChild(root);
    root.setAttribute("b", "1");
    root.setAttribute("a", "caf\xE9 \x80 \x01");
    root.setAttribute("b", "2");
    root.appendChild(document.createElement("p:c"));
    EXPECT_EQ(root.firstChild().baseName(), "c");
    EXPECT_EQ(document.xml(), "<r b=\"2\" a=\"caf\xC3\xA9 \xE2\x82\xAC \xEF\xBF\xBD\"><p:c/></r>");
    EXPECT_TRUE(document.load(folder.write("z.xml", "<z/>"))) << "replaces what was there";
    EXPECT_EQ(document.xml(), "<z/>");
}

} // namespace
