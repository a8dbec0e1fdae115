#include "Import/SourceReport.h"

#include "Import/Btd/BrokerMsg.h"
#include "TestFolders.h"
#include "support/FullTypes.h"
#include "support/Importing.h"
#include "support/TempDir.h"

#include <map>
#include <set>

namespace {

// Other programs identify constructs by id. In the summary, equal words have one meaning.
TEST(SourceReport, EachConstructHasAnIdAndWordsOfItsOwn)
{
    std::set<std::string_view> ids, words;
    const std::string schema = TempDir::read(TEST_SOURCE_DIR "/docs/report.schema.json");
    std::map<std::string_view, std::string_view> plurals;
    for (int i = 0; i < SourceReport::constructCount; ++i) {
        const SourceReport::Row& row = SourceReport::rowFor(static_cast<SourceReport::Construct>(i));
        EXPECT_TRUE(words.insert(row.words).second && ids.insert(row.id).second) << row.words;
        EXPECT_NE(schema.find(CString("\"") + row.id + "\""), schema.npos) << row.id;
        EXPECT_EQ(plurals.emplace(row.plural, row.singular).first->second, row.singular);
    }
}

TEST(SourceReport, SumsUpLossesInOneLine)
{
    SourceReport report;
    report.add(SourceReport::anyElement, {}, "a");
    report.count(SourceReport::optionality, 3);
    EXPECT_EQ(report.lossesInWords(), "");
    report.add(SourceReport::moduleMissing, {}, "a");
    EXPECT_EQ(report.lossesInWords(), "1 loss: 1 document not found");
    report.add(SourceReport::unresolvedReference, {}, "b");
    report.add(SourceReport::typeUnknown, {}, "b");
    EXPECT_EQ(report.lossesInWords(), "3 losses: 2 references became text, 1 document not found");
    EXPECT_EQ(report.queryTotal(SourceReport::detail), 4U);
    report.clear();
    EXPECT_EQ(report.lossesInWords(), "");
}

TEST(SourceReport, TheSameAtTheSamePlaceComesOnce)
{
    SourceReport report;
    for (const SourcePlace place : {SourcePlace{0, 1, 2}, {0, 1, 2}, {0, 1, 3}, {0, 2, 2}, {1, 1, 2}, {0, 1}, {0, 1}})
        report.add(SourceReport::typeUnknown, place, "a");
    report.add(SourceReport::typeUnknown, {0, 1, 2}, "b");
    report.add(SourceReport::unresolvedReference, {0, 1, 2}, "a");
    EXPECT_EQ(report.queryTotal(SourceReport::loss), 8U);
    EXPECT_EQ(report.queryEntries(SourceReport::loss).size(), 8U);
}

// Details that fill their memory bound don't reduce that of losses.
TEST(SourceReport, CountsWhatItsBoundLeavesOut)
{
    SourceReport report;
    report.addFile("x");
    for (std::uint32_t i = 1; i <= 1'000'000; ++i) {
        report.add(SourceReport::anyElement, {0, i, 1}, "a");
        report.add(SourceReport::typeUnknown, {0, i, 1}, i == 1 ? CString(198, 'n') + "\U0001F642" : "a");
    }
    for (const auto sort : {SourceReport::loss, SourceReport::detail}) {
        EXPECT_EQ(report.queryTotal(sort), 1'000'000U);
        EXPECT_EQ(report.queryEntries(sort).size() + report.queryUnlisted(sort), 1'000'000U);
        EXPECT_GT(report.queryUnlisted(sort), 0U);
    }
    EXPECT_GT(report.queryEntries(SourceReport::loss).size(), 500'000U);
    EXPECT_EQ(report.queryEntries(SourceReport::loss).front().name, CString(198, 'n') + "...");
}

const auto type = [](const CString& name, const CString& content) {
    return "\n <T NAME='" + name + "'>" + content + "</T>";
};

const Case kDocuments[] = {
    {"Whole",
     type("\\a\\R", "<ROW><F NAME='a' DESCRIPTION='d' TYPE='String'/></ROW>") +
         type("\\a\\A", "<ARRAY SIZE='5'><C TYPE='\\a\\A'/></ARRAY>") +
         type("\\a\\t", "<TABLE><C TYPE='String'/></TABLE>") + type("\\E\\E", "<ENUM><C NAME='x'/></ENUM>") +
         type("\\N\\N", ""),
     ""},
    {"Component", type("A", "<ARRAY SIZE='5'><C TYPE='String'/></ARRAY>"),
     "x:2:30: declaration skipped: component of the array \\A\n"},
    {"ArrayOfAnImpossibleSize", type("A", "<ARRAY SIZE='-3'/>"),
     "x:2:14: invalid value: SIZE=\"-3\" of the array \\A\n"},
    {"ArrayWithoutASize", type("A", "<ARRAY/>"), "x:2:14: invalid value: no SIZE in the array \\A, which gets 5\n"},
    {"Tag", type("R", "<row/><ROW/>"), "x:2:14: unknown statement: row in \\R\n"},
    {"Attribute", type("R", "<ROW><F NAME='a' name='b' TYPE='String'/></ROW>"),
     "x:2:19: unknown attribute: name of F\n"},
    {"Contents", type("R", "<ROW/>\n<ENUM/>"), "x:3:1: declared twice: content of \\R\n"},
    {"NamesInTheTopFolder", type("\\A", "<ROW/>") + type("B", "<ROW/>"),
     "x:2:2: name changed: \\A is \\\\A\nx:3:2: name changed: B is \\B\n"},
    {"Names", type("\\a\\", "<ROW><F/>\n</ROW>"),
     "x:2:2: without a name: type in the folder \\a\\\nx:2:21: without a name: field of \\a\\\n"
     "x:2:21: without a name: type of a field of \\a\\\n"},
    {"Constant", type("E", "<ENUM>\n<C/></ENUM>"), "x:3:1: without a name: constant of \\E\n"},
    {"NoComponent", type("t", "<TABLE/>"), "x:2:14: without a name: component of the table \\t\n"},
    {"Components", type("t", "<TABLE><C TYPE='a'/>\n<C TYPE='b'/></TABLE>"),
     "x:3:1: declaration skipped: second component of the table \\t\n"},
    {"Twins", type("R", "<ROW><F NAME='a' TYPE='a'/>\n<F NAME='a' TYPE='b'/></ROW>") + type("\\b\\R", "<ROW/>"),
     "x:3:1: declared twice: a\nx:4:2: declared twice: R\n"},
    {"BehindTheEnd", type("R", "") + type("\\a\\S", "<ROW/>") + "<!-- -->",
     "x:3:2: declaration skipped: \\a\\S after a type without content\n"},
};

class TypeDocument : public Importing<BrokerMessage>
{};

TEST_F(TypeDocument, TellsItsLosses)
{
    for (const Case& row : kDocuments) {
        import("<m>" + row.in + "</m>");
        const CString report = reportOf(message, folder.path());
        const std::size_t start = report.find('\n') + 1;
        EXPECT_EQ(report.substr(start, report.find("\n\n") + 1 - start), row.out) << row.name;
    }
}

} // namespace
