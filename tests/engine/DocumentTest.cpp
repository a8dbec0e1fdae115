// Whatever the names in a source, the document is well-formed and all referenced types exist.
#include "Import/Btd/BrokerMsg.h"
#include "Import/Dtd/DTDFullMsg.h"
#include "Import/Dtd/DTDMsg.h"
#include "Import/Schema/Full/SchemaFullMsg.h"
#include "Import/Schema/Literal/SchemaMsg.h"
#include "Import/XmlData/XMLDataMsg.h"
#include "support/Documents.h"
#include "support/Importing.h"

namespace {

// Latin-1, EUC-JP, both UTF-8 and Latin-1, control characters, no characters, markup, invalid names.
constexpr const char* kNames[] = {"Auftr\xE4ge",
                                  "\xB6\xC8\xCC\xB3",
                                  "\xC3\xA4\xE4",
                                  "a\x1B[31m",
                                  "\x81\x8D\x8F\x90\x9D",
                                  "\xC2\x9B",
                                  "\xED\xA0\x80",
                                  "\xEF\xBF\xBE",
                                  "\xF4\x90\x80\x80",
                                  "\xC0\x80",
                                  "a&lt",
                                  "a\"b",
                                  "\xE2\x82",
                                  "a:b:c",
                                  ":",
                                  "1x",
                                  "-",
                                  "a\\b",
                                  "t_a",
                                  "\x7F",
                                  "a]]>",
                                  "%",
                                  "#x",
                                  "\xCC\x80x",
                                  "a\tb",
                                  "a\xA0",
                                  "x\xF0\x9F\x98\x80"};

// Sources for several importers; "~" is replaced by a name and "^" by the next one.
constexpr const char* kSources[] = {
    "<!ELEMENT ~ (^*, ~?)><!ELEMENT ^ (~+)><!ATTLIST ~ ^ CDATA #IMPLIED>",
    "<?xml version='1.0' encoding='ISO-8859-1'?><~ ^='1'><^/><^ ~='2'/></~>",
    "<?xml version='1.0' encoding='ISO-8859-1'?><x:schema xmlns:x='http://www.w3.org/2001/XMLSchema'><x:element "
    "name='~' type='^'/><x:complexType name='^'><x:sequence><x:element name='~' type='^' maxOccurs='9'/>"
    "</x:sequence></x:complexType></x:schema>",
    "<~><BROKERTYPEDESCRIPTION NAME='\\~\\^' DESCRIPTION='~'><ENUM><CONSTANT NAME='^'/></ENUM>"
    "</BROKERTYPEDESCRIPTION></~>"};

CString filled(const CString& source, const char* name, const char* next)
{
    CString text;
    for (const char c : source)
        text += c == '~' ? name : c == '^' ? next : CString(1, c);
    return text;
}

template <class Message>
class Document : public Importing<Message>
{};
using Importers =
    testing::Types<DTDMessage, DTDFullMessage, XMLDataMessage, SchemaMessage, SchemaFullMessage, BrokerMessage>;
TYPED_TEST_SUITE(Document, Importers);

TYPED_TEST(Document, IsWellFormedWhateverTheNames)
{
    for (const char* const source : kSources)
        for (std::size_t i = 0; i < std::size(kNames); ++i) {
            TypeParam fresh;
            const CString path =
                this->folder.write("x", filled(source, kNames[i], kNames[(i + 1) % std::size(kNames)]));
            if (fresh.parseFile(path, "\\Auftr\xE4ge\\")) {
                EXPECT_EQ(documentFault(fresh), "") << TempDir::read(path);
            }
            this->boxes.take();
        }
}

} // namespace
