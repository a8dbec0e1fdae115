#include "Import/Dtd/DTDFullMsg.h"
#include "Import/Json/JsonMessage.h"
#include "Import/Schema/Full/SchemaFullMsg.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

#include <algorithm>

namespace {

using Files = std::vector<std::pair<const char*, CString>>;

// Returns a schema of the namespace urn:NAME with the prefix NAME; "" has none.
CString schema(const CString& name, const CString& content)
{
    CString tag = "<schema xmlns='http://www.w3.org/2001/XMLSchema'";
    if (name != "p")
        tag += " xmlns:p='urn:p'";
    if (!name.empty())
        tag += " targetNamespace='urn:" + name + "' xmlns:" + name + "='urn:" + name + "'";
    return tag + ">" + content + "</schema>";
}

CString element(const CString& name, const CString& fields)
{
    return "<element name='" + name + "'><complexType><sequence>" + fields + "</sequence></complexType></element>";
}

const CString kParts = schema("p", "<complexType name='T'><sequence><element name='v' type='string' "
                                   "maxOccurs='9'/></sequence></complexType><complexType name='A' abstract='true'>"
                                   "<attribute name='w'/></complexType><complexType name='B'><complexContent>"
                                   "<extension base='p:A'/></complexContent></complexType>");
const CString kImport = "<import namespace='urn:p' schemaLocation='p'/>";
const CString kField = "<element name='f' type='p:T'/>";

struct Row
{
    const char* name;
    std::vector<const char*> sources;
    CString types; // the root tag, the full names, then the losses
    std::vector<CString> roots = {};
    FullMessage::Layout layout = FullMessage::Layout::automatic;
};

// Each file is once a source, and once a document that another one refers to.
const Files kFiles = {
    {"a", schema("a", kImport + element("D", kField))},
    {"b", schema("b", kImport + element("D", kField + "<element name='g' type='int'/>"))},
    {"p", kParts},
    {"l", schema("l", "<element name='L' type='int'/><complexType name='T'/>")},
    {"n", schema("", "<include schemaLocation='m'/>" + element("N", "<element name='k' type='string'/>"))},
    {"m", schema("", "<include schemaLocation='n'/>" + element("M", "<element name='h' type='string'/>"))},
    {"t", schema("t", kImport + "<element name='R' type='p:T'/><element name='Q' type='p:A'/>" + element("S", kField))},
    {"c", schema("c", "<include schemaLocation='m'/>" + element("C", "<element ref='c:M'/>"))},
};

const Row kSchemas[] = {
    {"SharedTypesAreOne", {"a", "b"}, R"(D: \p\t_v \p\T \a\D \b\D)"},
    {"ANamedDocumentIsNoSource", {"p", "b", "a", "a"}, R"(D: \p\t_v \p\T \b\D \a\D)"},
    {"OfThoseThatNameEachOtherTheFirstIsOne", {"m", "n"}, R"(M: \M)"},
    {"WithoutNamespaceTypesLieInTheBasePath", {"n", "a"}, R"(N: \p\t_v \N \p\T \a\D)"},
    {"ANamespaceOfTheIncluder", {"m", "c"}, R"(C: \c\M \c\C)"},
    {"ByMainTypeNamesGiveWay", {"a", "b"}, R"(D: \D\t_v \D\T \D\D \D\D_2)", {}, FullMessage::Layout::byMainType},
    {"OneByNamespace", {"a"}, R"(D: \p\t_v \p\T \a\D)", {}, FullMessage::Layout::byNamespace},
    {"ARootByItsPrefix", {"a", "b"}, R"(D: \p\t_v \p\T \b\D)", {"b:D"}},
    {"ARootByItsUri", {"a", "b"}, R"(D: \p\t_v \p\T \a\D)", {"{urn:a}D"}},
    {"ATypeOfAnotherNamespaceKeepsItsName",
     {"t"},
     R"(R: \p\t_v \t\t_v \t\R \p\T \t\S)",
     {"R", "S"},
     FullMessage::Layout::byNamespace},
    {"AndSoDoThoseThatReplaceIt",
     {"t"},
     R"(Q: \p\B \t\Q; 1 loss: 1 abstract main type)",
     {"Q"},
     FullMessage::Layout::byNamespace},
    {"ATypeAsRoot", {"a"}, R"(T: \T\t_v \T\T)", {"T"}},
    {"SeveralRoots", {"a", "b"}, R"(D: \p\t_v \p\T \b\D \a\D)", {"b:D", "a:D"}},
    {"ARootTwice", {"l"}, R"(L: \L\L)", {"L", "l:L"}},
    {"TypesOfOneNameAsRoots", {"a", "l"}, R"(T: \l\T \p\t_v \p\T)", {"p:T", "l:T", "p:T"}},
};

template <class Message>
class Sets : public Importing<Message>
{
protected:
    CString namesOf(const Files& files, const Row& row)
    {
        for (const auto& [name, bytes] : files)
            this->folder.write(name, bytes);
        std::vector<CString> sources;
        for (const char* source : row.sources)
            sources.push_back(this->folder.path(source));
        Message message;
        message.setFurtherFiles({sources.begin() + 1, sources.end()});
        message.setRoots(row.roots);
        message.setLayout(row.layout);
        EXPECT_EQ(message.parseFile(sources.front(), "\\"), 1) << row.name;
        CString names = message.queryMainTypeName() + ":";
        message.beginEnum();
        while (const Element* type = message.enumNext())
            names += " " + type->queryPath() + type->queryName();
        const CString losses = message.queryReport().lossesInWords();
        return losses.empty() ? names : names + "; " + losses;
    }
};

using SchemaSets = Sets<SchemaFullMessage>;
using DtdSets = Sets<DTDFullMessage>;
using JsonSchemaSets = Sets<JsonSchemaMessage>;
using OpenApiSets = Sets<OpenApiMessage>;
using AvroSets = Sets<AvroMessage>;

TEST_F(SchemaSets, AreOneImport)
{
    for (const Row& row : kSchemas)
        EXPECT_EQ(namesOf(kFiles, row), row.types) << row.name;
}

TEST_F(SchemaSets, ACopyOfADeclarationIsNoLoss)
{
    const CString kept = "<complexType name='K'><sequence><element name='k' type='p:T'/></sequence></complexType>";
    const std::pair<CString, std::size_t> copies[] = {
        {kept, 0},
        {"\n<!-- -->" + kept, 0},
        {"<complexType name='K'><sequence><element name='k' type='p:S'/></sequence></complexType>", 1},
        {"<complexType name='K'><sequence><element name='k' type='p:T'/><element name='l'/></sequence></complexType>",
         1},
        {"<complexType name='K'><sequence/></complexType>", 1},
        {"<complexType name='K'><choice><element name='k' type='p:T'/></choice></complexType>", 1},
        {"<complexType name='K' abstract='true'>" + kept.substr(kept.find('>') + 1), 1},
    };
    const CString rest = "<simpleType name='T'><restriction base='int'/></simpleType><simpleType name='S'>"
                         "<restriction base='int'/></simpleType>" +
                         element("E", "<element name='e' type='p:K'/>");
    for (const auto& [copy, losses] : copies) {
        message.setFurtherFiles({folder.write("copy", schema("p", copy))});
        EXPECT_EQ(message.parseFile(folder.write("first", schema("p", kept + rest)), ""), 1);
        EXPECT_EQ(message.queryReport().countsInWords(SourceReport::loss).size(), losses) << copy;
    }
}

TEST_F(SchemaSets, AmbiguousRootIsRefusedWithItsCandidates)
{
    for (const auto& [name, bytes] : kFiles)
        folder.write(name, bytes);
    message.setFurtherFiles({folder.path("b")});
    const std::pair<CString, CString> roots[] = {
        {"D", "There are several elements called D: {urn:a}D, {urn:b}D."},
        {"x:D", "There is no prefix called x."},
        {"{urn:x}D", "There is no element called {urn:x}D."},
    };
    for (const auto& [root, words] : roots) {
        message.setRoot(root);
        EXPECT_EQ(message.parseFile(folder.path("a"), "\\"), 0) << root;
        EXPECT_THAT(boxes.take(), testing::ElementsAre(words)) << root;
    }
}

TEST_F(SchemaSets, ASourceThatIsNoneIsRefused)
{
    message.setFurtherFiles({folder.write("a", "<a/>")});
    EXPECT_EQ(import(kParts), 0);
    EXPECT_THAT(boxes.take(), testing::ElementsAre(folder.path("a") + " is not a schema."));
}

// The folder of a namespace is the shortest end of its URI that is unique.
TEST_F(SchemaSets, FoldersAreNamedByTheirUris)
{
    using Names = std::vector<CString>; // sorted bytewise
    const std::pair<Names, Names> rows[] = {
        {{"urn:iso:std:iso:20022:tech:xsd:pacs.008.001.08"}, {"pacs.008.001.08"}},
        {{"http://www.opengis.net/gml/3.2", "http://www.opengis.net/gml"}, {"gml", "gml-3.2"}},
        {{"http://www.w3.org/2000/09/xmldsig#"}, {"xmldsig"}},
        {{"http://x/a/types", "http://x/b/types", "http://x/b/types/"},
         {"a-types", "http-x-b-types", "http-x-b-types_2"}},
        {{"1", ":"}, {"1", "_"}},
        {{"urn:set", "urn:x:mine", "urn:y"}, {"mine", "x-mine", "y"}},
        {{"a" + times(100'000, "/x"), "b" + times(100'000, "/x")},
         {"x" + times(15, "-x"), "x" + times(15, "-x") + "_2"}},
    };
    for (const auto& [uris, names] : rows) {
        message.setFolder("urn:set", "mine");
        Names files;
        for (const CString& uri : uris)
            files.push_back(folder.write(std::to_string(files.size()),
                                         "<schema xmlns='http://www.w3.org/2001/XMLSchema' targetNamespace='" + uri +
                                             "'>" + element("E", "<element name='v' type='string'/>") + "</schema>"));
        message.setLayout(FullMessage::Layout::byNamespace);
        message.setFurtherFiles({files.begin() + 1, files.end()});
        EXPECT_EQ(message.parseFile(files.front(), ""), 1);
        Names found;
        message.beginEnum();
        while (const Element* type = message.enumNext())
            found.push_back(type->queryPath().substr(0, type->queryPath().size() - 1));
        std::ranges::sort(found);
        EXPECT_EQ(found, names);
    }
}

TEST_F(DtdSets, AreOneImport)
{
    const Files files = {
        {"a", "<!ENTITY % m SYSTEM 'm'>%m;<!ELEMENT A (X, Y)>"},
        {"b", "<!ENTITY % m SYSTEM 'm'>%m;<!ELEMENT B (Y)>"},
        {"c", "<!ENTITY % b SYSTEM 'b'>%b;<!ELEMENT C (B, Y)>"},
        {"d", "<!ENTITY % x 'X'><!ENTITY % e SYSTEM 'e'>%e;<!ELEMENT D (E)><!ELEMENT X EMPTY>"},
        {"e", "<!ELEMENT E (%x;)>"},
        {"m", "<!ELEMENT X EMPTY>\n<!ELEMENT Y (X)><!ATTLIST Y v CDATA #IMPLIED>"},
    };
    const Row rows[] = {
        {"SharedModules", {"a", "b"}, R"(A: \Y \A \B)"},
        {"ANamedDtdIsNoSource", {"b", "c"}, R"(C: \Y \B \C)"},
        {"AModuleHasTheEntitiesOfItsDtd", {"e", "d", "b"}, R"(D: \Y \E \D \B)"},
        {"SeveralRoots", {"a", "c"}, R"(B: \Y \B \A)", {"B", "A"}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(namesOf(files, row), row.types) << row.name;
}

TEST_F(JsonSchemaSets, AreOneImport)
{
    const auto schema = [](const CString& name, const CString& property) {
        return "{'$id':'http://x/" + name + "','title':'" + name + "','properties':{'v':{}" + property + "}}";
    };
    Files files = {
        {"a.json", schema("A", ",'p':{'$ref':'P'}")},
        {"b.json", schema("B", ",'p':{'$ref':'p.json'}")},
        {"p.json", schema("P", "")},
        {"q.json", schema("Q", ",'r':{'$ref':'r.json'}")},
        {"r.json", schema("R", ",'q':{'$ref':'q.json'}")},
    };
    for (auto& [name, bytes] : files)
        std::ranges::replace(bytes, '\'', '"');
    const Row rows[] = {
        {"ByIdentifierOrFile", {"p.json", "b.json", "a.json", "a.json"}, R"(B: \P \B \A)"},
        {"OfThoseThatNameEachOtherTheFirstIsOne", {"r.json", "q.json"}, R"(R: \Q \R)"},
        {"ARootOfAnySource", {"a.json", "q.json"}, R"(Q: \R \Q)", {"Q"}},
        {"ByMainType", {"b.json", "a.json"}, R"(B: \B\P \B\B \B\A)", {}, FullMessage::Layout::byMainType},
    };
    for (const Row& row : rows)
        EXPECT_EQ(namesOf(files, row), row.types) << row.name;
    message.setFurtherFiles({folder.write("c.json", "{\n]")});
    EXPECT_EQ(message.parseFile(folder.path("a.json"), ""), 0);
    EXPECT_EQ(boxes.take().size(), 1u);
    message.setFurtherFiles({folder.write("m.json", R"({"a":1})"), folder.path("p.json")});
    EXPECT_EQ(message.parseFile(folder.path("a.json"), ""), 1);
    EXPECT_EQ(message.queryReport().lossesInWords(), "1 loss: 1 value not understood");
}

TEST_F(OpenApiSets, AreOneImport)
{
    const Files files = {
        {"a", "openapi: 3.0.0\npaths: {/a: {get: {operationId: o, requestBody: {content: {a/b: {schema: {$ref: "
              "'s#/components/schemas/S'}}}}}}}\n"},
        {"b", "asyncapi: 2.0.0\nchannels: {c: {publish: {message: {name: M, payload: {properties: {m: {}}}}}}}\n"},
        {"c", "openapi: 3.1.0\npaths: {/a: {get: {operationId: c, requestBody: {content: {a/b: {schema: {$ref: "
              "'s#/components/schemas/S'}}}}}}}\n"},
        {"d", "openapi: 3.0.0\npaths: {/a: {get: {operationId: c, requestBody: {content: {a/b: {schema: {$ref: "
              "'e#/P'}}}}}}}\ncomponents: {schemas: {Q: {properties: {q: {}}}}}\n"},
        {"e", "P: {properties: {p: {$ref: 'd#/components/schemas/Q'}}}\n"},
        {"f", "openapi: 3.0.0\ncomponents: {schemas: {Key: {$ref: 'g'}, R: {properties: {k: {$ref: 'g'}, e: {$ref: "
              "'h#/e1'}}}, E: {$ref: 'h#/e1'}}}\n"},
        {"g", "title: G\nproperties: {x: {}}\n"},
        {"h", "e1: {enum: [x]}\n"},
        {"i", "openapi: 3.0.0\ncomponents: {schemas: {I: {$ref: 'j#/P'}, Q: {properties: {k: {}}}}}\n"},
        {"j", "P: {properties: {k: {}}, discriminator: {propertyName: k, mapping: {q: Q, n: No}}}\n"},
        {"s", "openapi: 3.0.0\ncomponents: {schemas: {S: {properties: {v: {}}}}}\n"},
    };
    const Row rows[] = {
        {"Messages", {"s", "a", "b"}, R"(S: \M \S)"},
        {"ARootThatSeveralSourcesUse", {"a", "c"}, R"(S: \S)", {"S"}},
        {"NamesOfTheComponents", {"f"}, R"(R: \R\Key \R\E \R\R)"},
        {"APartIsNoSource", {"e", "d"}, R"(P: \Q \P)"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(namesOf(files, row), row.types) << row.name;
    message.setFurtherFiles({folder.path("e")});
    EXPECT_EQ(message.parseFile(folder.path("a"), ""), 0);
    EXPECT_THAT(boxes.take(),
                testing::ElementsAre(folder.path("e") + ": it is neither an OpenAPI nor an AsyncAPI document."));
    // A mapping in a part names schemas of any document.
    message.setFurtherFiles({});
    EXPECT_EQ(message.parseFile(folder.path("i"), ""), 1);
    EXPECT_EQ(message.queryReport().lossesInWords(), "1 loss: 1 reference became text");
}

TEST_F(OpenApiSets, HaveSchemasInXml)
{
    const Files files = {
        {"a.yaml", R"(asyncapi: 2.6.0
channels:
  c:
    publish:
      message:
        oneOf:
          - {name: order, schemaFormat: application/xml, payload: {$ref: o.xsd}}
          - name: Ping
            schemaFormat: application/xsd+xml;version=1.0
            payload: |
              <?xml version='1.0' encoding='latin1'?>
              <schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:l='urn:l'>
                <import namespace='urn:l' schemaLocation='l.xsd'/>
                <element name='Größe' type='l:Line'/>
                <elem/>
              </schema>
          - {name: M, schemaFormat: text/xml, payload: " <a>\n</b>"}
          - {name: N, schemaFormat: text/xml, payload: {$ref: none.xsd}}
          - {name: T, schemaFormat: text/xml, payload: {$ref: '#/components/schemas/T'}}
          - {name: U, payload: {$ref: 'u.xsd#/U'}}
          - {name: V, schemaFormat: text/xml, payload: {$ref: 'u.xsd#V'}}
components:
  schemas:
    T: "<schema xmlns='http://www.w3.org/2001/XMLSchema'>\n<element name='T' type='int'/><element name='T2' type='T1'/></schema>"
)"},
        {"l.xsd", schema("l", "<complexType name='Line'><attribute name='n' type='int'/></complexType>")},
        {"o.xsd",
         schema("l", "<include schemaLocation='l.xsd'/>" + element("All", "<element ref='l:Order'/>") +
                         element("Order", "<element name='x' type='l:Line' maxOccurs='9'/>\n<element ref='l:Gone'/>"))},
        {"u.xsd", schema("u", element("U", "<element name='u' type='time'/>") + element("W", "<any/>"))},
    };
    const CString documents = "1 document not found, 1 document not well-formed, ";
    const CString last = ", 1 statement not understood";
    const CString all = "; 6 losses: 3 references became text, " + documents + last.substr(2);
    const Row rows[] = {
        {"Messages",
         {"a.yaml"},
         R"(Order: \Order\W \Order\T \Order\U \Order\Line \Order\t_x \Order\Order \Order\All)" + all},
        {"ByNamespace",
         {"a.yaml"},
         R"(Order: \u\W \T \u\U \l\Line \l\t_x \l\Order \l\All)" + all,
         {},
         FullMessage::Layout::byNamespace},
        {"ARoot", {"a.yaml"}, R"(W: \W\W; 4 losses: )" + documents + "1 reference became text" + last, {"u:W"}},
        {"AnElementOfNoMessageAsRoot",
         {"a.yaml"},
         R"(T2: \T2\T2; 5 losses: 2 references became text, )" + documents + last.substr(2),
         {"T2"}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(namesOf(files, row), row.types) << row.name;
    EXPECT_EQ(message.parseFile(folder.path("a.yaml"), "\\"), 1);
    EXPECT_EQ(reportOf(message, folder.path()), R"(6 losses
a.yaml:15: unknown statement: elem
a.yaml:17:56: document not well-formed: Opening and ending tag mismatch: a line 1 and b in line 2 of the text
a.yaml:21:63: reference to nothing that was read: u.xsd#V
o.xsd:2:1: reference to nothing that was read: Gone
a.yaml:18:63: module or document not there: none.xsd
a.yaml:24:8: reference to nothing that was read: T1

4 details
a.yaml:21:63: choice between alternatives: U or W
u.xsd:1:254: any element: W

3 references became text
1 document not found
1 document not well-formed
1 statement not understood
1 any element
1 optional part
1 bound of occurrence
1 choice
)");
    message.setCatalogs({folder.write("c", "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog'>"
                                           "<uri name='none.xsd' uri='l.xsd'/></catalog>")});
    message.setRoot("l:All");
    EXPECT_EQ(message.parseFile(folder.path("a.yaml"), "\\"), 1);
    EXPECT_EQ(reportOf(message, folder.path()), R"(4 losses
a.yaml:15: unknown statement: elem
a.yaml:17:56: document not well-formed: Opening and ending tag mismatch: a line 1 and b in line 2 of the text
a.yaml:21:63: reference to nothing that was read: u.xsd#V
o.xsd:2:1: reference to nothing that was read: Gone

2 details

2 references became text
1 document not well-formed
1 statement not understood
1 optional part
1 bound of occurrence
)");
}

TEST_F(OpenApiSets, SchemasInXmlShareTheirDocuments)
{
    const auto api = [](std::vector<CString> schemas) {
        CString messages;
        for (const CString& name : schemas)
            messages += "{schemaFormat: xsd, payload: {$ref: " + name + "}}, ";
        return "asyncapi: 2.0.0\nchannels: {c: {publish: {message: {oneOf: [" + messages + "]}}}}\n";
    };
    const auto root = [](const CString& name, const CString& document) {
        return schema("t",
                      "<include schemaLocation='" + document + "'/>" + element(name, "<element name='i' type='t:I'/>"));
    };
    const auto type = [](const CString& attribute) {
        return schema("t", "<complexType name='I'><attribute name='" + attribute + "'/></complexType>");
    };
    for (const auto& [name, bytes] :
         Files{{"a", root("a", "i")},
               {"b", root("b", "j")},
               {"c", root("c", "j")},
               {"i", type("x")},
               {"j", type("y")},
               {"d",
                schema("t", "<redefine schemaLocation='i'><complexType name='I'><complexContent><extension base='t:I'>"
                            "<attribute name='z'/></extension></complexContent></complexType></redefine>" +
                                element("d", "<element name='i' type='t:I'/>"))}})
        folder.write(name, bytes);
    const std::pair<std::vector<CString>, CString> rows[] = {
        {{"a", "b", "c", "b"}, "I_2(y:String) I(x:String) a(i:I) b(i:I_2) c(i:I_2)"},
        {{"b", "c", "a"}, "I_2(x:String) I(y:String) b(i:I) c(i:I) a(i:I_2)"},
        {{"a", "d"}, "I(x:String z:String) I_2(x:String) a(i:I_2) d(i:I)"},
    };
    for (const auto& [schemas, types] : rows) {
        EXPECT_EQ(message.parseFile(folder.write("x.yaml", api(schemas)), "\\"), 1);
        EXPECT_EQ(fullTypesOf(message), types);
        EXPECT_EQ(message.queryReport().queryTotal(SourceReport::loss), 0u);
    }
}

TEST_F(AvroSets, AreOneImport)
{
    const Files files = {
        {"a",
         R"({"type":"record","name":"R","namespace":"x.a","fields":[{"name":"p","type":"x.p.P"},{"name":"m","type":{"type":"map",
            "values":"int"}}]})"},
        {"b", R"({"type":"record","name":"R","namespace":"x.b","fields":[{"name":"p","type":"x.p.P"}]})"},
        {"p",
         R"([{"type":"record","name":"P","namespace":"x.p","fields":[{"name":"e","type":{"type":"enum","name":"E","symbols":["S"]}}]}])"},
    };
    const Row rows[] = {
        {"NamespacesAreFolders", {"a", "b", "p"}, R"(R: \x.a\m \x.p\E \x.p\P \x.a\t_m \x.a\R \x.b\R)"},
        {"ByMainTypeNamesGiveWay",
         {"p", "b", "a"},
         R"(R: \R\m \R\E \R\P \R\R \R\t_m \R\R_2)",
         {},
         FullMessage::Layout::byMainType},
        {"ARootByItsFullName", {"a", "b", "p"}, R"(R: \x.p\E \x.p\P \x.b\R)", {"x.b.R"}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(namesOf(files, row), row.types) << row.name;
}

} // namespace
