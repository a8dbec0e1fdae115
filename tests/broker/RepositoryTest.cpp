#include "Repositories.h"
#include "support/Boxes.h"
#include "support/ImportCommand.h"

#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>

// The client that is shipped, with both of its databases.

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
        const BrokerAccount account{"TYPEFORGE", postgres().password}; // the wizard passes user names in capitals
        ASSERT_EQ("", isLocal() ? session.open("local", 7250, nullptr)
                                : session.open("127.0.0.1", static_cast<unsigned>(postgres().port), &account));
    }

    CString database() const
    {
        return isLocal() ? "Driver=SQLite3;Database=" + home.path("data/typeforge/types.db")
                         : postgres().connection("typeforge");
    }
    CString logon() const { return isLocal() ? CString() : postgres().logon(); }

    auto rows() const { return rowsOf(database(), logon()); }

    void execute(const CString& sql) const
    {
        if (isLocal())
            home.write("data/typeforge/types.db.lock", ""); // creates the folder
        CDatabase connection;
        connection.Open(database(), CDatabase::readWrite, logon());
        connection.ExecuteSQL(sql);
    }

    /// Returns the code of creating one type, and the recorded source of the existing type.
    static CString create(BrokerSession& session, const CString& document, const CString& source, VornExisting rule)
    {
        const CreatedType type = session.createTypes({document}, source, rule, VornExisting::keep).front();
        return std::to_string(type.code) + " " + (type.isSourceStored ? type.source : "none kept");
    }

    Boxes boxes;
};

// Dry runs and comparisons depend on this.
TEST_P(Repository, IsReadWithoutBeingTouched)
{
    const auto read = [&](BrokerSession& session) {
        const BrokerAccount account{"TYPEFORGE", postgres().password};
        ASSERT_EQ("", isLocal() ? session.open("local", 7250, nullptr, true)
                                : session.open("127.0.0.1", static_cast<unsigned>(postgres().port), &account, true));
    };
    const CString document = "<BROKERTYPEDESCRIPTION NAME=\"\\a\\b\"/>",
                  other = "<BROKERTYPEDESCRIPTION NAME=\"\\a\\b\"> </BROKERTYPEDESCRIPTION>";
    {
        BrokerSession session;
        read(session);
        EXPECT_EQ(create(session, document, "s", VornExisting::stop), "0 none kept");
        EXPECT_EQ(session.readFolder("\\a\\"), std::vector<CString>());
        EXPECT_THROW(session.createType(document, true), ClientError);
    }
    EXPECT_FALSE(isLocal() && std::filesystem::exists(home.path("data/typeforge")));
    if (!isLocal()) {
        EXPECT_THROW(rows(), CDBException);
    }
    {
        BrokerSession session;
        open(session);
        for (const char* name : {"\\a\\c\\d", "\\a\\b", "\\a\\gr\u00f6\u00dfe", "\\aa\\b", "\\A\\b"})
            create(session, CString("<BROKERTYPEDESCRIPTION NAME=\"") + name + "\"/>", "s", VornExisting::keep);
    }
    const auto before = rows();
    BrokerSession session;
    read(session);
    EXPECT_EQ(session.readFolder("\\a\\"),
              (std::vector<CString>{document, "<BROKERTYPEDESCRIPTION NAME=\"\\a\\gr\u00f6\u00dfe\"/>"}));
    EXPECT_EQ(create(session, document, "s", VornExisting::stop), "3 s");
    EXPECT_EQ(create(session, other, "s", VornExisting::stop), "2 s");
    EXPECT_EQ(create(session, other, "s", VornExisting::replace), "1 s");
    EXPECT_EQ(create(session, "<x/>", "s", VornExisting::replace), "99 ");
    EXPECT_EQ(rows(), before);
}

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

// A repository of an earlier version gets the columns for sources, unless the role has no right to add them.
TEST_P(Repository, KeepsWhereATypeCameFrom)
{
    const CString type = "<BROKERTYPEDESCRIPTION NAME=\"\\a\\b\"><", end = "/></BROKERTYPEDESCRIPTION>";
    const struct Row
    {
        const char *kind, *source;
        VornExisting rule;
        const char *told, *toldWithout;
    } table[] = {
        {"ROW", "/x/1", VornExisting::stop, "0 ", "0 none kept"},
        {"ROW", "/x/2", VornExisting::replace, "3 /x/1", "3 none kept"},
        {"ENUM", "/x/2", VornExisting::stop, "2 /x/1", "2 none kept"},
        {"ENUM", "/x/2", VornExisting::replaceFound, "1 /x/1", "1 none kept"},
        {"TABLE", "/x/3", VornExisting::replaceFound, "2 /x/2", "2 none kept"}, // not the type that was found before
        {"TABLE", "/x/3", VornExisting::replaceFound, "1 /x/2", "1 none kept"},
        {"ARRAY", "/x/4", VornExisting::keep, "2 /x/3", "2 none kept"},
        {"ARRAY", "/x/4", VornExisting::replace, "1 /x/3", "1 none kept"},
        {"", "", VornExisting::replace, "", ""}, // a program that doesn't record sources
        {"ROW", "/x/5", VornExisting::replace, "1 ", "1 none kept"},
    };
    const CString earlier = "CREATE TABLE typeforge_types "
                            "(name TEXT PRIMARY KEY, document TEXT NOT NULL, revision INTEGER NOT NULL)";
    for (const char* state : {"new", "of an earlier version", "half upgraded", "not to be upgraded"}) {
        SCOPED_TRACE(state);
        const bool isKept = state != CString("not to be upgraded");
        if (!isKept && isLocal())
            continue;
        execute("DROP TABLE IF EXISTS typeforge_types");
        if (state != CString("new"))
            execute(earlier);
        if (state == CString("half upgraded"))
            execute("ALTER TABLE typeforge_types ADD COLUMN source_time TEXT");
        if (!isKept)
            execute("DROP ROLE IF EXISTS guest; CREATE ROLE guest LOGIN PASSWORD 'g'; "
                    "GRANT SELECT, INSERT, UPDATE ON typeforge_types TO guest");
        BrokerSession session;
        const BrokerAccount guest{"guest", "g"};
        if (isKept)
            open(session);
        else
            ASSERT_EQ("", session.open("127.0.0.1", static_cast<unsigned>(postgres().port), &guest));
        for (const Row& row : table) {
            if (*row.kind)
                EXPECT_EQ(isKept ? row.told : row.toldWithout,
                          create(session, type + row.kind + end, row.source, row.rule));
            else
                execute("UPDATE typeforge_types SET document = 'x', revision = revision + 1");
        }
    }
}

TEST_P(Repository, HoldsTheDocumentsOfTheImport)
{
    Types types(dtdOf(20));
    BrokerSession session;
    open(session);
    EXPECT_EQ(0, Creation(session, types.message).errors);
    EXPECT_EQ(types.all(), rows());
}

TEST_P(Repository, TwoAtOnceLoseNothing)
{
    CString other = TempDir::read(dtdOf(400));
    for (std::size_t at = 0; (at = other.find(", b)", at)) != CString::npos;)
        other[at + 2] = 'c';
    home.write("other.dtd", other);
    home.write("password", postgres().password + "\nnot this");
    const auto command = [&](const CString& arguments, const CString& name) {
        return "$import dtd " + arguments + " --create " +
               (isLocal() ? "local" : "127.0.0.1:" + std::to_string(postgres().port)) +
               " --user typeforge --password-file password >" + name + " 2>" + name + ".told";
    };
    const auto names = [&](const char* outcome) {
        std::istringstream lines(TempDir::read(home.path("one")) + TempDir::read(home.path("two")));
        std::multiset<CString> found;
        for (CString name, word, rest; lines >> name >> word; std::getline(lines, rest))
            if (word == outcome)
                found.insert(name);
        return found;
    };
    for (const char* file : {"types.dtd", "other.dtd"}) {
        const bool isSame = file == CString("types.dtd");
        execute("DROP TABLE IF EXISTS typeforge_types");
        const Answer both = runShell(home, command("types.dtd --overwrite all", "one") + " & " +
                                               command(CString(file) + " --overwrite all", "two") + "; wait $!");
        EXPECT_EQ((Answer{0, "", ""}), both);
        std::multiset<CString> all = names("created"), second = names(isSame ? "unchanged" : "modifed");
        EXPECT_EQ(401u, std::set<CString>(all.begin(), all.end()).size());
        if (!isSame)
            second.insert("root"); // which is the same in both
        EXPECT_EQ(all, second);
        int told = 0;
        for (const char* name : {"one.told", "two.told"})
            told += std::atoi(TempDir::read(home.path(name)).erase(0, 18).c_str()); // after the program's name
        EXPECT_EQ(isSame ? 0 : 400, told);
    }
}

INSTANTIATE_TEST_SUITE_P(Databases, Repository, testing::Values("local", "PostgreSQL"),
                         [](const auto& database) { return std::string(database.param); });

} // namespace
