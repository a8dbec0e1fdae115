#include "Repositories.h"
#include "support/Boxes.h"
#include "support/ImportCommand.h"

#include <set>
#include <sstream>

// The client that ships, over both of its databases.

namespace {

PostgresServer& postgres()
{
    static PostgresServer server;
    return server;
}

class Repository : public Home, public testing::WithParamInterface<const char*>
{
protected:
    Repository()
    {
        if (isLocal())
            return;
        CDatabase server;
        server.Open(postgres().connection("postgres"), CDatabase::readWrite, postgres().logon());
        server.ExecuteSQL("DROP DATABASE IF EXISTS typeforge WITH (FORCE)");
        server.ExecuteSQL("CREATE DATABASE typeforge");
    }

    bool isLocal() const { return GetParam() == std::string("local"); }

    void open(BrokerSession& session) const
    {
        const BrokerAccount account{"TYPEFORGE", postgres().password}; // as the wizard gives users
        ASSERT_EQ("", isLocal() ? session.open("local", 7250, nullptr)
                                : session.open("127.0.0.1", static_cast<unsigned>(postgres().port), &account));
    }

    auto rows() const
    {
        return isLocal() ? rowsOf("Driver=SQLite3;Database=" + home.path("data/typeforge/types.db"))
                         : rowsOf(postgres().connection("typeforge"), postgres().logon());
    }

    Boxes boxes;
};

TEST_P(Repository, CodeTellsWhatBecameOfAType)
{
    const CString start = "<BROKERTYPEDESCRIPTION NAME=\"\\a\\", end = "</BROKERTYPEDESCRIPTION>";
    const struct Row
    {
        CString document;
        bool overwrite;
        unsigned code;
    } table[] = {
        {start + "b\"><ROW/>" + end, false, 0},
        {start + "b\"><ENUM/>" + end, false, 2},
        {start + "b\"><TABLE/>" + end, true, 1},
        {start + "b\"><ARRAY/>" + end, true, 1},
        {start + "B\"/>", true, 0},
        {start + "o'; DROP TABLE ?\"/>", false, 0},
        {start + "größe €\"/>", false, 0},
        {start + "huge\" DESCRIPTION=\"" + CString(2'000'000, 'x') + "\"/>", false, 0},
        {start + "c\"><ROW/><ROW/>" + end, false, 99},
        {start + "c\"><ROW>" + end, false, 99},
        {start + "c\"/><!-- open", false, 99},
        {"<BROKERTYPEDESCRIPTION><ROW/></BROKERTYPEDESCRIPTION>", false, 99},
        {"<x:BROKERTYPEDESCRIPTION xmlns:x='x' NAME='c'/>", false, 99},
        {"<ROW NAME='c'/>", false, 99},
        {"", false, 99},
    };
    BrokerSession session;
    open(session);
    for (const Row& row : table)
        EXPECT_EQ(row.code, session.createType(row.document, row.overwrite)) << row.document.substr(0, 100);

    std::vector<std::pair<CString, CString>> kept = {{"\\a\\b", table[3].document},
                                                     {"\\a\\B", table[4].document},
                                                     {"\\a\\o'; DROP TABLE ?", table[5].document},
                                                     {"\\a\\größe €", table[6].document},
                                                     {"\\a\\huge", table[7].document}};
    EXPECT_EQ(kept, rows());
}

TEST_P(Repository, HoldsTheDocumentsOfTheImport)
{
    Types types(dtdOf(20));
    BrokerSession session;
    open(session);
    EXPECT_EQ(0, Creation(session, types.message).errors);
    EXPECT_EQ(types.all(), rows());
}

TEST_P(Repository, OneOfTwoAtOnceCreatesAType)
{
    dtdOf(400);
    home.write("password", postgres().password + "\nnot this");
    const CString create = "$import dtd types.dtd --overwrite none --create " +
                           (isLocal() ? "local" : "127.0.0.1:" + std::to_string(postgres().port)) +
                           " --user typeforge --password-file password ";
    const Answer both = runShell(home, create + ">one & " + create + ">two; wait $!");
    EXPECT_EQ((Answer{0, "", ""}), both);
    std::istringstream lines(TempDir::read(home.path("one")) + TempDir::read(home.path("two")));
    std::set<CString> created, skipped;
    for (CString name, outcome, rest; lines >> name >> outcome; std::getline(lines, rest))
        EXPECT_TRUE((outcome == "created" ? created : skipped).insert(name).second) << name << " twice " << outcome;
    EXPECT_EQ(401u, created.size());
    EXPECT_EQ(created, skipped);
}

INSTANTIATE_TEST_SUITE_P(Databases, Repository, testing::Values("local", "PostgreSQL"),
                         [](const auto& database) { return std::string(database.param); });

} // namespace
