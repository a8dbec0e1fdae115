#include "Files/File.h"
#include "Files/FileFinder.h"
#include "Files/FileMessage.h"
#include "Import/Schema/Full/SchemaFullMsg.h"
#include "Import/Schema/Literal/SchemaMsg.h"
#include "support/Importing.h"
#include "support/SchemaModel.h"

#include <fcntl.h>
#include <unistd.h>

using testing::ElementsAre;

namespace {

#define INCLUDE(location) "<xsd:include schemaLocation='" location "'/>"
#define PARTY(field) RECORD("Party", FIELD(field))
// Needs the type Party from another document.
#define MAIN NESTED("Main", FIELD("c", "type='Party'"))
#define FOUND "Main{c:=Party} Party{name:String}"
#define MISSING "Main{c:=String}"

// In addition to the main file and the others there is p.xsd, with the Party of FOUND.
struct Graph
{
    const char* name;
    const char* mainFile;
    std::vector<std::pair<const char*, const char*>> others = {};
    const char* model = FOUND;
    const char* mainName = "a.xsd";
};

const Graph kGraphs[] = {
    {"PartyAndItsAddressArePulled",
     INCLUDE("party.xsd") MAIN,
     {{"party.xsd", RECORD("Party", FIELD("name", "type='xsd:string'") FIELD("address", "type='Address'"))
                        RECORD("Address", FIELD("city")) RECORD("Unused", FIELD("x"))}},
     "Address{city:String} Main{c:=Party} Party{name:String address:=Address}"},
    {"FolderWithCapitalsAndBlank",
     INCLUDE("../common/Party.xsd") MAIN,
     {{"common/Party.xsd", PARTY("name")}},
     FOUND,
     "My Schemas/Orders.XSD"},
    {"BackslashAndEscapedBlank", INCLUDE("x%20y\\z\\Party.xsd") MAIN, {{"x y/z/Party.xsd", PARTY("name")}}},
    {"OtherCaseIsLookedForSecond",
     INCLUDE("COMMON/party.XSD") MAIN,
     {{"Common/Party.xsd", PARTY("name")}, {"common/x.xsd", ""}}},
    {"GivenFolderThenBytesOfTheNameDecide",
     INCLUDE("d/q.XSD") MAIN,
     {{"D/Q.xsd", PARTY("lost")}, {"d/q.xsd", PARTY("lost")}, {"d/Q.xsd", PARTY("name")}}},
    {"GivenCaseComesFirst", INCLUDE("p.xsd") MAIN, {{"P.XSD", PARTY("lost")}}},
    {"Import", "<xsd:import namespace='n' schemaLocation='p.xsd'/>" MAIN},
    {"RedefineBringsTheDocumentAndNotWhatItHolds",
     "<xsd:redefine schemaLocation='p.xsd'>" PARTY("lost") "</xsd:redefine>" MAIN},
    {"AnyPrefixIsFollowed", "<s:include xmlns:s='http://www.w3.org/2001/XMLSchema' schemaLocation='p.xsd'/>" MAIN},
    {"StatementOfAnotherLanguageIsNotFollowed",
     "<s:include xmlns:s='u' schemaLocation='p.xsd'/><import schemaLocation='p.xsd'/>" MAIN,
     {},
     MISSING},
    {"NetworkIsSkipped", INCLUDE("http://127.0.0.1/p.xsd") INCLUDE("//host/p.xsd") MAIN, {}, MISSING},
    {"MissingAndIllFormedAreSkipped",
     INCLUDE("no.xsd") INCLUDE("bad.xsd") INCLUDE(".") INCLUDE("") INCLUDE("p.xsd") MAIN,
     {{"bad.xsd", PARTY("lost") "<"}}},
    {"CycleThroughTheMainFileAddsNothing",
     INCLUDE("x/b.xsd") INCLUDE("./a.xsd") MAIN,
     {{"x/b.xsd", INCLUDE("../x/../a.xsd") INCLUDE("../p.xsd")}}},
    {"DiamondIsReadOnce",
     INCLUDE("b.xsd") INCLUDE("c.xsd") MAIN,
     {{"b.xsd", INCLUDE("p.xsd")}, {"c.xsd", INCLUDE("./p.xsd")}}},
    {"SameNameTwiceGathersTheFieldsDepthFirst",
     INCLUDE("b.xsd") INCLUDE("c.xsd") MAIN,
     {{"b.xsd", INCLUDE("d.xsd") PARTY("b")}, {"c.xsd", PARTY("z")}, {"d.xsd", PARTY("d")}},
     "Main{c:=Party} Party{b:String d:String z:String}"},
    {"OwnDeclarationWins", INCLUDE("p.xsd") MAIN PARTY("own"), {}, "Main{c:=Party} Party{own:String}"},
    {"PulledChildIsNotPulledAsAType",
     INCLUDE("q.xsd") MAIN,
     {{"q.xsd", RECORD("Party", FIELD("Name", "type='PartyName'")) RECORD("PartyName", FIELD("x"))}},
     "Main{c:=Party} Party{Name:=PartyName}"},
};

class SchemaInclude : public Importing<SchemaMessage>
{
protected:
    int importSchema(const char* name, const CString& declarations)
    {
        writeSchema(folder, "p.xsd", PARTY("name"));
        return message.parseFile(writeSchema(folder, name, declarations), "\\");
    }
};

TEST_F(SchemaInclude, GraphBecomesTheModel)
{
    for (const Graph& row : kGraphs) {
        const TempDir dir;
        for (const auto& [name, declarations] : row.others)
            writeSchema(dir, name, declarations);
        writeSchema(dir, "p.xsd", PARTY("name"));
        EXPECT_EQ(message.parseFile(writeSchema(dir, row.mainName, row.mainFile), "\\"), 1) << row.name;
        EXPECT_EQ(modelOf(message), row.model) << row.name << ": " << row.mainFile;
    }
}

// The same applies to a missing read permission, a failing device or too many open files.
TEST_F(SchemaInclude, ThatIsTooLargeFailsTheImport)
{
    std::filesystem::resize_file(folder.write("b.xsd", ""), kMaxNamedFile + 1);
    EXPECT_EQ(importSchema("a.xsd", INCLUDE("p.xsd") INCLUDE("b.xsd") MAIN), 0);
    EXPECT_THAT(boxes.take(), ElementsAre("Can't open file " + std::filesystem::canonical(folder.path()).string() +
                                          "/b.xsd, error = 1"));
    EXPECT_THAT(boxes.details, testing::HasSubstr("larger than 64 MB"));
}

TEST_F(SchemaInclude, FileOfTheKernelIsNone)
{
    std::filesystem::create_symlink("/proc/self/environ", folder.path("link"));
    std::filesystem::create_symlink("/dev/fd/0", folder.path("input"));
    const int before = ::dup(0), file = ::open(folder.write("file", "x").c_str(), O_RDONLY);
    ::dup2(file, 0);
    FileFinder finder;
    for (const char* name : {"link", "input", "LINK", "/proc/self/environ", "/PROC/version", "/dev/stdin", "/dev/null",
                             "/proc/self/fd/0", "/sys/kernel/mm/transparent_hugepage/enabled"})
        EXPECT_FALSE(finder.find(folder.path(), name)) << name;
    EXPECT_TRUE(finder.find(folder.path(), "FILE"));
    ::dup2(before, 0);
    for (const int opened : {before, file})
        ::close(opened);
}

// A growing file is read up to its size at the start. A missing file is looked for once.
TEST_F(SchemaInclude, EndsWhateverFilesDo)
{
    const CString log = folder.write("log", "old");
    InputFile file(log, 5);
    std::ofstream(log, std::ios::app) << "new";
    char bytes[9];
    EXPECT_EQ(file.read(bytes, sizeof bytes), 3);
    EXPECT_EQ(file.read(bytes, sizeof bytes), 0);

    FileFinder finder;
    EXPECT_FALSE(finder.find(folder.path(), "late"));
    folder.write("late", "");
    EXPECT_FALSE(finder.find(folder.path(), "late"));
    std::filesystem::create_directory(folder.path("d"));
    // Longer than the system opens (PATH_MAX), so each step has to start at the folder that the last one has reached.
    EXPECT_TRUE(FileFinder().find(folder.path(), times(1000, "d/.././") + "log"));
}

// The path is relative to the main file as given and contains the location as written.
TEST_F(SchemaInclude, FaultOfAnIncludedDocumentHasItsOwnPlace)
{
    writeSchema(folder, "sub/b.xsd", INCLUDE("./../C.xsd") "\n<xsd:elem/>" INCLUDE("no.xsd"));
    writeSchema(folder, "c.xsd", "\n <xsd:element>\n</xsd:elem>");
    const CString main = writeSchema(folder, "a.xsd", INCLUDE("./sub//./b.xsd") INCLUDE(".//c.xsd") MAIN);
    const auto lossesOf = [&](auto&& reading) {
        reading.parseFile(main, "\\");
        std::vector<CString> losses;
        for (const SourceReport::Entry& entry : reading.queryReport().queryEntries(SourceReport::loss))
            losses.push_back(
                placeInWords(reading.queryReport().fileNameOf(entry.place.file), entry.place.line, entry.place.column)
                    .substr(folder.path("").size()) +
                " " + CString(entry.name));
        return losses;
    };
    const CString illFormed = "sub/../c.xsd:3:12 Opening and ending tag mismatch: element line 2 and elem (named in ";
    for (const auto& losses : {lossesOf(SchemaMessage()), lossesOf(SchemaFullMessage())}) {
        EXPECT_THAT(losses, testing::IsSupersetOf({"sub/b.xsd:2:1 xsd:elem", "sub/b.xsd:2:12 no.xsd"}));
        EXPECT_THAT(losses, testing::Contains(illFormed + folder.path("sub/b.xsd") + ":1:58)").Times(1));
    }
}

// Types are pulled by the names that fields give, which those inside fields lack.
TEST_F(SchemaInclude, TypeInsideAFieldOfAPulledTypeIsALoss)
{
    writeSchema(folder, "q.xsd", RECORD("Party", NESTED("f", FIELD("lost")) FIELD("name") NESTED("g", "")));
    EXPECT_EQ(importSchema("a.xsd", INCLUDE("q.xsd") MAIN), 1);
    EXPECT_EQ(modelOf(message), "Main{c:=Party} Party{f:String name:String g:String}");
    EXPECT_EQ(message.queryReport().queryEntries(SourceReport::loss).size(), 1U);
}

// The types that are not pulled have losses of each step: reading, the table, and what it left unread.
TEST_F(SchemaInclude, OnlyLossesOfPulledTypesCount)
{
    const auto typeWithLosses = [](const CString& name) {
        const CString field = "<xsd:element name='" + name + "1' nam=''/>";
        return "<xsd:complexType name='" + name + "'><xsd:all>" + field + "<xsd:element name='" + name +
               "1' type='xsd:date'/></xsd:all><xsd:all><xsd:element name='" + name + "2'/></xsd:all></xsd:complexType>";
    };
    const auto lossesWith = [&](const CString& main) {
        EXPECT_EQ(importSchema("a.xsd", INCLUDE("q.xsd") + main), 1);
        CString losses;
        for (const SourceReport::Entry& entry : message.queryReport().queryEntries(SourceReport::loss))
            losses += CString(entry.name) + ";";
        return losses;
    };
    writeSchema(folder, "q.xsd",
                typeWithLosses("Lost") + typeWithLosses("Party") + typeWithLosses("Late") +
                    "<xsd:element name='e'><xsd:complexType mixed='1'/></xsd:element><xsd:simpleType name='s' nam=''/>"
                    "<xsd:element name='m' substitutionGroup='h'/><xsd:group name='g'><xsd:all>" FIELD(
                        "f") "</xsd:all>"
                             "</xsd:group><xsd:elem/>");
    const CString shared = "nam in xsd:element;nam in xsd:simpleType;m;xsd:elem;";
    EXPECT_EQ(lossesWith(MAIN), shared + "Party1;Party2;");
    EXPECT_EQ(lossesWith(NESTED("Main", "<xsd:element ref='e'/>")), "e;nam in xsd:simpleType;m;xsd:elem;");
    // Declarations of their name keep the types out.
    EXPECT_EQ(lossesWith(NESTED("Main", FIELD("c", "type='Late'") NESTED("Late", FIELD("b")))),
              "nam in xsd:element;nam in xsd:simpleType;m;xsd:elem;Late;Late1;Late2;");
    EXPECT_EQ(lossesWith(NESTED("Main", FIELD("c", "type='Late' maxOccurs='2'")) FIELD("Late", "type='xsd:string'")),
              "nam in xsd:element;nam in xsd:simpleType;m;xsd:elem;Late1;Late2;Late;");
}

TEST_F(SchemaInclude, TargetNamespaceKeepsTheIncludesOut)
{
    writeSchema(folder, "p.xsd", PARTY("name"));
    EXPECT_EQ(import("<xsd:schema targetNamespace=''>" INCLUDE("p.xsd") MAIN "</xsd:schema>"), 1);
    EXPECT_EQ(modelOf(message), MISSING);
}

TEST_F(SchemaInclude, MainElementNeedsItsTypeInTheFileItself)
{
    EXPECT_EQ(importSchema("a.xsd", INCLUDE("p.xsd") FIELD("m", "type='Party'")), 0);
    EXPECT_THAT(boxes.take(), ElementsAre("Parse error: this document does not contain a root element"));
}

TEST_F(SchemaInclude, CyclicDeclarationOfAnIncludedDocumentShowsInTheIncludePassOnly)
{
    writeSchema(folder, "cyclic.xsd", PARTY("Party"));
    EXPECT_EQ(importSchema("a.xsd", INCLUDE("cyclic.xsd") MAIN), 1);
    EXPECT_THAT(boxes.take(), ElementsAre("Incorrect XSD file: cyclic references"));
}

// Ten thousand types, each of which needs the next. The files include one another in a chain, and alternate between two
// folders, so a path that only grows would become too long.
TEST_F(SchemaInclude, LongChainOfTypesIsPulledThroughAsManyFiles)
{
    constexpr int kFiles = 1000;
    const auto fileOf = [](int at) { return (at % 2 ? "odd/" : "even/") + std::to_string(at) + ".xsd"; };
    for (int file = 0; file < kFiles; ++file) {
        CString types = file + 1 < kFiles ? formatText(INCLUDE("../%s"), fileOf(file + 1).c_str()) : "";
        for (int type = file; type < 10 * kFiles; type += kFiles)
            types += formatText(RECORD("T%d", FIELD("f%d", "type='T%d'")), type, type, type + 1);
        writeSchema(folder, fileOf(file), types);
    }
    ASSERT_EQ(
        importSchema("a.xsd", INCLUDE("even/0.xsd") FIELD("Main", "type='M'") RECORD("M", FIELD("f", "type='T0'"))), 1);
    EXPECT_EQ(message.beginEnum(), 10 * kFiles + 1);
}

TEST_F(SchemaInclude, LocationIsAUriReferenceOfALocalFile)
{
    const std::pair<const char*, const char*> kPaths[] = {
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
    EXPECT_EQ(folderOf("/x.xsd"), "/");
}

} // namespace
