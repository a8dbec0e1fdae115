#include "Formats/SchemaMsg.h"
#include "Platform/SchemaLocation.h"
#include "support/SchemaModel.h"

using testing::ElementsAre;

namespace {

struct Graph
{
    const char* name;
    std::vector<std::pair<const char*, const char*>> files; // the first one is imported
    const char* model;
};

void PrintTo(const Graph& row, std::ostream* out)
{
    *out << row.name;
}

// The main file of most graphs: it needs the type Party from elsewhere.
#define MAIN                                                                                                           \
    "<xsd:element name='Main'><xsd:complexType><xsd:all><xsd:element name='c' type='Party'/></xsd:all>"                \
    "</xsd:complexType></xsd:element>"
#define PARTY(field)                                                                                                   \
    "<xsd:complexType name='Party'><xsd:all><xsd:element name='" field "'/></xsd:all></xsd:complexType>"
#define INCLUDE(location) "<xsd:include schemaLocation='" location "'/>"
#define FOUND "Main{c:=Party} Party{name:String}"
#define MISSING "Main{c:=String}"

const Graph kGraphs[] = {
    {"PartyAndItsAddressArePulled",
     {{"order.xsd", INCLUDE("party.xsd") MAIN},
      {"party.xsd", "<xsd:complexType name='Party'><xsd:all><xsd:element name='name' type='xsd:string'/>"
                    "<xsd:element name='address' type='Address'/></xsd:all></xsd:complexType>"
                    "<xsd:complexType name='Address'><xsd:all><xsd:element name='city'/></xsd:all></xsd:complexType>"
                    "<xsd:complexType name='Unused'><xsd:all><xsd:element name='x'/></xsd:all></xsd:complexType>"}},
     "Address{city:String} Main{c:=Party} Party{name:String address:=Address}"},
    {"FolderWithCapitalsAndBlank",
     {{"My Schemas/Orders.XSD", INCLUDE("../common/Party.xsd") MAIN}, {"common/Party.xsd", PARTY("name")}},
     FOUND},
    {"EscapedBlank",
     {{"a.xsd", INCLUDE("My%20Schemas/Party.xsd") MAIN}, {"My Schemas/Party.xsd", PARTY("name")}},
     FOUND},
    {"Backslash", {{"a.xsd", INCLUDE("x\\y\\Party.xsd") MAIN}, {"x/y/Party.xsd", PARTY("name")}}, FOUND},
    {"OtherCaseIsLookedForSecond",
     {{"a.xsd", INCLUDE("COMMON/party.XSD") MAIN}, {"Common/Party.xsd", PARTY("name")}, {"common/x.xsd", ""}},
     FOUND},
    {"GivenCaseComesFirst",
     {{"a.xsd", INCLUDE("party.xsd") MAIN}, {"PARTY.XSD", PARTY("lost")}, {"party.xsd", PARTY("name")}},
     FOUND},
    {"Import", {{"a.xsd", "<xsd:import namespace='n' schemaLocation='p.xsd'/>" MAIN}, {"p.xsd", PARTY("name")}}, FOUND},
    {"RedefineBringsTheDocumentAndNotWhatItHolds",
     {{"a.xsd", "<xsd:redefine schemaLocation='p.xsd'>" PARTY("lost") "</xsd:redefine>" MAIN},
      {"p.xsd", PARTY("name")}},
     FOUND},
    {"AnyPrefixIsFollowed",
     {{"a.xsd", "<s:include xmlns:s='http://www.w3.org/2001/XMLSchema' schemaLocation='p.xsd'/>" MAIN},
      {"p.xsd", PARTY("name")}},
     FOUND},
    {"NetworkIsSkipped", {{"a.xsd", INCLUDE("http://127.0.0.1/p.xsd") INCLUDE("//host/p.xsd") MAIN}}, MISSING},
    {"MissingAndIllFormedAreSkipped",
     {{"a.xsd", INCLUDE("no.xsd") INCLUDE("bad.xsd") INCLUDE(".") INCLUDE("") INCLUDE("p.xsd") MAIN},
      {"bad.xsd", PARTY("lost") "<"},
      {"p.xsd", PARTY("name")}},
     FOUND},
    {"IncludesOfIncludesAreRelativeToTheirDocument",
     {{"a.xsd", INCLUDE("x/b.xsd") MAIN}, {"x/b.xsd", INCLUDE("y/p.xsd")}, {"x/y/p.xsd", PARTY("name")}},
     FOUND},
    {"CycleThroughTheMainFileAddsNothing",
     {{"a.xsd", INCLUDE("x/b.xsd") INCLUDE("./a.xsd") MAIN}, {"x/b.xsd", INCLUDE("../x/../a.xsd") PARTY("name")}},
     FOUND},
    {"DiamondIsReadOnce",
     {{"a.xsd", INCLUDE("b.xsd") INCLUDE("c.xsd") MAIN},
      {"b.xsd", INCLUDE("p.xsd")},
      {"c.xsd", INCLUDE("./p.xsd")},
      {"p.xsd", PARTY("name")}},
     FOUND},
    {"SameNameTwiceGathersTheFieldsDepthFirst",
     {{"a.xsd", INCLUDE("b.xsd") INCLUDE("c.xsd") MAIN},
      {"b.xsd", INCLUDE("d.xsd") PARTY("b")},
      {"c.xsd", PARTY("z")},
      {"d.xsd", PARTY("d")}},
     "Main{c:=Party} Party{b:String d:String z:String}"},
    {"OwnDeclarationWins",
     {{"a.xsd", INCLUDE("p.xsd") MAIN PARTY("own")}, {"p.xsd", PARTY("lost")}},
     "Main{c:=Party} Party{own:String}"},
    {"PulledChildIsNotPulledAsAType",
     {{"a.xsd", INCLUDE("p.xsd") MAIN},
      {"p.xsd", "<xsd:complexType name='Party'><xsd:all><xsd:element name='Name' type='PartyName'/></xsd:all>"
                "</xsd:complexType>"
                "<xsd:complexType name='PartyName'><xsd:all><xsd:element name='x'/></xsd:all></xsd:complexType>"}},
     "Main{c:=Party} Party{Name:=PartyName}"},
};

class SchemaGraph : public testing::TestWithParam<Graph>
{};

TEST_P(SchemaGraph, BecomesTheModel)
{
    Boxes boxes;
    const TempDir dir;
    for (const auto& [name, declarations] : GetParam().files)
        writeSchema(dir, name, declarations);
    SchemaMessage message;
    EXPECT_EQ(message.parseFile(dir.path(GetParam().files[0].first), "\\"), 1);
    EXPECT_EQ(modelOf(message), GetParam().model);
}

INSTANTIATE_TEST_SUITE_P(Rows, SchemaGraph, testing::ValuesIn(kGraphs), [](const auto& row) { return row.param.name; });

TEST(SchemaInclude, TargetNamespaceKeepsTheIncludesOut)
{
    Boxes boxes;
    const TempDir dir;
    writeSchema(dir, "p.xsd", PARTY("name"));
    SchemaMessage message;
    EXPECT_EQ(message.parseFile(
                  dir.write("a.xsd", "<xsd:schema targetNamespace=''>" INCLUDE("p.xsd") MAIN "</xsd:schema>"), "\\"),
              1);
    EXPECT_EQ(modelOf(message), MISSING);
}

TEST(SchemaInclude, MainElementNeedsItsTypeInTheFileItself)
{
    Boxes boxes;
    const TempDir dir;
    writeSchema(dir, "p.xsd", PARTY("name"));
    SchemaMessage message;
    EXPECT_EQ(
        message.parseFile(writeSchema(dir, "a.xsd", INCLUDE("p.xsd") "<xsd:element name='m' type='Party'/>"), "\\"), 0);
    EXPECT_THAT(boxes.take(), ElementsAre("Parse error: this document does not contain a root element"));
}

TEST(SchemaInclude, CyclicDeclarationOfAnIncludedDocumentShowsInTheIncludePassOnly)
{
    Boxes boxes;
    const TempDir dir;
    writeSchema(dir, "p.xsd", PARTY("Party"));
    SchemaMessage message;
    EXPECT_EQ(message.parseFile(writeSchema(dir, "a.xsd", INCLUDE("p.xsd") MAIN), "\\"), 1);
    EXPECT_THAT(boxes.take(), ElementsAre("Incorrect XSD file: cyclic references"));
}

// Ten thousand types, each of which needs the next; the files that hold them include one another in a row, and lie in
// two folders in turn, so that a path that is only ever added to would get too long.
TEST(SchemaInclude, LongChainOfTypesIsPulledThroughAsManyFiles)
{
    Boxes boxes;
    const TempDir dir;
    constexpr int kFiles = 1000;
    const auto fileOf = [](int at) { return (at % 2 ? "odd/" : "even/") + std::to_string(at) + ".xsd"; };
    for (int file = 0; file < kFiles; ++file) {
        CString types = file + 1 < kFiles ? INCLUDE("../") : "";
        if (!types.empty())
            types.insert(types.rfind('\''), fileOf(file + 1));
        for (int type = file; type < 10 * kFiles; type += kFiles)
            types += "<xsd:complexType name='T" + std::to_string(type) + "'><xsd:all><xsd:element name='f" +
                     std::to_string(type) + "' type='T" + std::to_string(type + 1) + "'/></xsd:all></xsd:complexType>";
        writeSchema(dir, fileOf(file), types);
    }
    const CString main = INCLUDE("even/0.xsd") "<xsd:element name='Main'><xsd:complexType><xsd:all>"
                                               "<xsd:element name='f' type='T0'/></xsd:all></xsd:complexType>"
                                               "</xsd:element>";
    SchemaMessage message;
    ASSERT_EQ(message.parseFile(writeSchema(dir, "main.xsd", main), "\\"), 1);
    EXPECT_EQ(message.beginEnum(), 10 * kFiles + 1);
}

TEST(SchemaInclude, LocationIsAUriReferenceOfALocalFile)
{
    const std::pair<const char*, const char*> kPaths[] = {
        {"a.xsd", "a.xsd"},
        {" a%2Exsd ", "a.xsd"},
        {"a%zz%4", "a%zz%4"},
        {"a.xsd?query#fragment", "a.xsd"},
        {"file:///x/a%20b.xsd", "/x/a b.xsd"},
        {"FILE://localhost/x.xsd", "/x.xsd"},
        {"file:x.xsd", "x.xsd"},
        {"file://elsewhere/x.xsd", ""},
        {"\\\\server\\share\\x.xsd", ""},
        {"urn:x", ""},
        {"./urn:x", "./urn:x"},
        {"a%00.xsd", ""},
        {"", ""},
    };
    for (const auto& [reference, path] : kPaths)
        EXPECT_EQ(localPath(reference), path) << reference;
}

} // namespace
