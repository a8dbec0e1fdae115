// Attacks by an XML file: access to other files or the network, and growth far beyond its own size.
#include "Xml/Dom.h"
#include "Xml/XmlParser.h"
#include "support/Importing.h"

#include <algorithm>
#include <arpa/inet.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using testing::HasSubstr;

// Counts its callbacks.
struct Counter : XmlHandler
{
    std::size_t elements = 0, attributes = 0, texts = 0, ended = 0, deepest = 0;

    void startElement(XmlName, XmlAttributes list, const XmlScope&) override
    {
        ++elements;
        attributes += list.size();
        deepest = std::max(deepest, elements - ended);
    }
    void endElement() override { ++ended; }
    void text(std::string_view piece) override { texts += piece.size(); }
};

class XmlBounds : public testing::Test
{
protected:
    // Returns the error as "LINE reason"; "" if the document was read to its end.
    std::string read(const std::string& bytes)
    {
        counter = {};
        const auto error = parseXmlFile(folder.write("x.xml", bytes), counter);
        return error ? std::to_string(error->line) + " " + error->reason : "";
    }

    TempDir folder;
    Counter counter;
};

TEST_F(XmlBounds, NeitherFilesNorTheNetworkAreTouched)
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const bound = reinterpret_cast<sockaddr*>(&address);
    ASSERT_FALSE(bind(listener, bound, length) || listen(listener, 8) || getsockname(listener, bound, &length));
    const int watch = inotify_init1(IN_NONBLOCK);
    const std::string secret = folder.write("secret", "<!ENTITY u 'secret'>");
    ASSERT_GE(inotify_add_watch(watch, secret.c_str(), IN_OPEN | IN_ACCESS), 0);

    const std::string server = "://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/secret";
    for (const std::string& uri : {"http" + server, "ftp" + server, "file://" + secret, secret, CString("secret")}) {
        for (const std::string& subset :
             {"SYSTEM '" + uri + "'", "PUBLIC '-//x' '" + uri + "' [<!ENTITY v ''>]",
              "[<!ENTITY % p SYSTEM '" + uri + "'> %p;]", "[<!ENTITY u SYSTEM '" + uri + "'>]"}) {
            const std::string reference = subset.ends_with("v ''>]") ? "&v;" : "&u;";
            read("<!DOCTYPE a " + subset + "><a xmlns:i='http://www.w3.org/2001/XInclude'><i:include href='" + uri +
                 "'/>1" + reference + "2" + reference + "</a>");
            EXPECT_EQ(counter.texts, 2U) << subset;
        }
    }
    pollfd calls[] = {{listener, POLLIN, 0}, {watch, POLLIN, 0}};
    EXPECT_EQ(poll(calls, 2, 0), 0) << "somebody called, or opened the file";
    close(listener);
    close(watch);
}

TEST_F(XmlBounds, ExternalEntityInAValueIsAnError)
{
    EXPECT_THAT(read("<!DOCTYPE a [<!ENTITY u SYSTEM 'secret'>]>\n<a b='&u;'/>"), HasSubstr("2 Attribute references"));
}

// Returns a document of ten entities, each ten times as long as the previous one: 10^10 bytes if the first one has ten.
std::string bomb(const std::string& innermost, const std::string& use)
{
    std::string subset = "<!DOCTYPE a [\n<!ENTITY e0 '" + innermost + "'>\n";
    for (int i = 1; i <= 9; ++i)
        subset += "<!ENTITY e" + std::to_string(i) + " '" + times(10, "&e" + std::to_string(i - 1) + ";") + "'>\n";
    return subset + "]>\n" + use;
}

TEST_F(XmlBounds, ExpansionEndsEarlyWithItsPlace)
{
    const std::string plenty = times(50'000, "x");
    const Case rows[] = {
        {"laughs", bomb("laugh", "<a>&e9;</a>"), "13 "},
        {"laughs with elements", bomb("<b/>", "<a>\n&e9;</a>"), "14 "},
        {"laughs in a value", bomb("laugh", "<a\nb='&e9;'/>"), "14 "},
        {"parameter entities",
         "<!DOCTYPE a [\n<!ENTITY % p '<!ENTITY &#37; q \"x\">'>\n" + times(300'000, "%p;") + "]><a/>", "3 "},
        {"one long entity, often", "<!DOCTYPE a [<!ENTITY e '" + plenty + "'>]>\n<a>" + times(20'000, "&e;") + "</a>",
         "2 "},
        {"the same in values",
         "<!DOCTYPE a [<!ENTITY e '" + plenty + "'>]>\n<a>" + times(20'000, "<b c='&e;'/>") + "</a>", "2 "},
        {"default values", "<!DOCTYPE a [<!ATTLIST b c CDATA '" + plenty + "'>]>\n<a>" + times(20'000, "<b/>") + "</a>",
         "2 "},
        {"itself", "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]>\n<a>&e;</a>", "2 "},
        {"a chain", "<!DOCTYPE a [<!ENTITY e '<b>&e;</b>'>]>\n<a>&e;</a>", "2 "},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(read(row.in), testing::StartsWith(row.out)) << row.name;
        EXPECT_LT(counter.texts + counter.attributes * plenty.size(), 50'000'000U) << row.name;
    }
    EXPECT_EQ(read("<!DOCTYPE a [<!ENTITY e 'ten bytes.'>]><a>" + times(50'000, "&e;") + "</a>"), "")
        << "expansion in proportion to the document is allowed";
}

TEST_F(XmlBounds, NestingIsReadUpToItsBound)
{
    EXPECT_EQ(read("<!DOCTYPE a [<!ENTITY e ''>]>" + times(256, "<a>") + times(256, "</a>")), "");
    EXPECT_EQ(read(times(200'000, "<a>\n") + times(200'000, "</a>")), "");
    EXPECT_EQ(counter.deepest, 200'000U);
    EXPECT_EQ(read(times(1'000'000, "<a>\n")),
              "200001 The elements are nested more than 200,000 levels deep, which is the limit");
    EXPECT_EQ(counter.deepest, 200'000U);
    EXPECT_EQ(read("<!DOCTYPE a [<!ENTITY e ''>]>\n" + times(300, "<a>")),
              "2 Excessive depth in document: 256, which exceeds the limit for documents that declare entities");
    EXPECT_EQ(read("<a>" + times(200'000, "<b c='") + "'/>"), "1 Unescaped '<' not allowed in attributes values");
}

TEST_F(XmlBounds, FloodsOfAttributesAndNamespacesAreCutOff)
{
    const auto flood = [](int count, const std::string& prefix) {
        std::string bytes = "<a>\n<b";
        for (int i = 0; i < count; ++i)
            bytes += " " + prefix + std::to_string(i) + "='u'";
        return bytes + "/></a>";
    };
    EXPECT_EQ(read(flood(10'000, "b")), "");
    EXPECT_EQ(counter.attributes, 10'000U);
    EXPECT_EQ(read("<a>" + times(5, flood(9'000, "b")) + "</a>"),
              "4 The document has too many lists with too many members: the limit is 64 comparisons for each byte");
    for (const int count : {10'001, 1'000'000})
        EXPECT_EQ(read(flood(count, "b")), "2 An element has more than 10,000 attributes, which is the limit");
    EXPECT_EQ(read(flood(4'000, "xmlns:b")), "");
    EXPECT_EQ(read(flood(1'000'000, "xmlns:b")),
              "2 More than 4,096 namespaces are declared at once, which is the limit");
    EXPECT_EQ(read(times(5'000, "<a xmlns:b='u'>\n")),
              "4097 More than 4,096 namespaces are declared at once, which is the limit");
}

TEST_F(XmlBounds, NamesAreReadUpToTheirBound)
{
    const std::string name(4096, 'n'), more = name + "n";
    EXPECT_EQ(read("<" + name + " " + name + "='1'><p:" + name.substr(2) + "/></" + name + ">"), "");
    for (const std::string& content :
         {"<" + more + "/>", "<p:" + name + "/>", "<b " + more + "='1'/>", "<b><?" + more + "?></b>"})
        EXPECT_EQ(read("<a>\n" + content + "</a>"), "2 A name has more than 4,096 bytes, which is the limit");
    EXPECT_EQ(read("<!DOCTYPE a [<!ATTLIST b " + more + " CDATA '1'>]>\n<a><b/></a>"),
              "2 A name has more than 4,096 bytes, which is the limit");
    std::string names = "<a>\n";
    for (int i = 0; i < 100'001; ++i)
        names += "<n" + std::to_string(i) + "/>";
    EXPECT_EQ(read(names + "</a>"), "2 The document has more than 100,000 different names, which is the limit");
}

TEST_F(XmlBounds, ListsThatAreComparedAreCutOff)
{
    const auto flood = [](int count, const std::string& value = "v") {
        std::string values = "(" + value;
        for (int i = 0; i < count; ++i)
            values += "|" + value + std::to_string(i);
        return "\n<!ATTLIST a b " + values + ") #IMPLIED>";
    };
    const std::string refusal =
        "The document has too many lists with too many members: the limit is 64 comparisons for each byte";
    EXPECT_EQ(read("<!DOCTYPE a [" + flood(10'000) + "]><a/>"), "");
    EXPECT_EQ(read("<!-- (" + times(50'000, "|)") + " --><?p " + times(50'000, "|") + "?><a/>"), "");
    EXPECT_EQ(read("<!DOCTYPE a [" + times(300, flood(400)) + "]><a/>"), "");
    EXPECT_EQ(read("<!DOCTYPE a [" + flood(50'000) + "]><a/>"), "2 " + refusal);
    // In this encoding, the second byte of the character is that of a '>'.
    EXPECT_EQ(
        read("<?xml version='1.0' encoding='ISO-2022-JP'?><!DOCTYPE a [" + flood(50'000, "\x1B$B0>\x1B(B") + "]><a/>"),
        "2 " + refusal);
    const std::string two = "<!ENTITY % p '" + flood(5'000) + "'><!ENTITY % q '" + flood(5'000) + "'>";
    EXPECT_EQ(read("<!DOCTYPE a [" + two + "\n" + times(10, "%p;%q;") + "]><a/>"), "4 " + refusal);
}

// libxml2 asks for pieces of 4,000 bytes, and the buffer of a file has 64 kB.
TEST_F(XmlBounds, PiecesOfTheFileMayEndAnywhereInANameOfSeveralBytesACharacter)
{
    const std::string name = times(100, "\u2122");
    for (const std::size_t end : {4'000, 8'000, 65'536})
        for (std::size_t i = 0; i < 60; ++i) {
            const std::string content(end - 2 * name.size() - 16 + i, 'x');
            EXPECT_EQ(read("<" + name + "><a>" + content + "</a></" + name + ">"), "") << end << " " << i;
        }
}

TEST_F(XmlBounds, LongTextsArriveWhole)
{
    const std::string text = times(5'000'000, "0123456789");
    for (const std::string& content : {text, "<![CDATA[" + text + "]]>"})
        EXPECT_TRUE(read("<a>" + content + "</a>").empty() && counter.texts == text.size()) << counter.texts;
    EXPECT_EQ(read("<a b='" + text + "'><!--" + text + "--></a>"), "");
    const IXMLDOMDocument document = IXMLDOMDocument::create();
    ASSERT_TRUE(document.load(folder.write("x.xml", "<a>" + text + "</a>")));
    EXPECT_EQ(document.documentElement().firstChild().nodeValue(), text);
}

TEST_F(XmlBounds, DepthOfATreeCostsNoStack)
{
    const std::string deep = times(100'000, "<a>") + "x" + times(100'000, "</a>");
    const IXMLDOMDocument document = IXMLDOMDocument::create();
    ASSERT_TRUE(document.load(folder.write("x.xml", deep)));
    EXPECT_EQ(document.xml(), deep);
}

TEST_F(XmlBounds, CutAnywhereItIsAnErrorWithItsPlace)
{
    const std::string whole = "<?xml version='1.0'?>\n<!DOCTYPE a [<!ENTITY e '<b/>'><!ATTLIST a c CDATA 'd'>]>\n"
                              "<a x='1'>t&e;&#65;<!-- c --><?p i?><![CDATA[d]]><p:q xmlns:p='u'/>\xC3\xB6</a>";
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_NE(read(whole.substr(0, size)), "") << size;
        EXPECT_LE(counter.ended, counter.elements) << size;
    }
    EXPECT_EQ(read(whole), "");
}

} // namespace
