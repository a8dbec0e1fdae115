#include "Platform/Tables.h"
#include "odbc/Import.h"
#include "support/Boxes.h"
#include "support/Servers.h"

#include <gmock/gmock.h>

namespace {

PostgresServer& postgres()
{
    static PostgresServer server;
    return server;
}

MariaDbServer& mariaDb()
{
    static MariaDbServer server;
    return server;
}

TempDir& folder()
{
    static TempDir dir;
    return dir;
}

enum Kind
{
    sqlite,
    postgresql,
    mariadb
};

// A connection on a database of that kind that holds nothing else.
std::unique_ptr<Connected> freshDatabase(Kind kind)
{
    static int count = 0;
    const CString name = "d" + std::to_string(++count);
    if (kind == sqlite)
        return std::make_unique<Connected>("Driver=SQLite3;Database=" + folder().path(name) + ";");
    const bool isPostgres = kind == postgresql;
    const DatabaseServer& server = isPostgres ? static_cast<DatabaseServer&>(postgres()) : mariaDb();
    Connected(server.connection(isPostgres ? "postgres" : "mysql"), server.logon())
        .database.ExecuteSQL("CREATE DATABASE " + name);
    auto window = std::make_unique<Connected>(server.connection(name), server.logon());
    if (kind == mariadb)
        window->database.ExecuteSQL("SET sql_mode = 'ANSI_QUOTES'");
    return window;
}

struct Import
{
    const char* name;
    Kind kind;
    std::vector<CString> statements;
    const char* tables;
    const char* result;
};

const Import kImports[] = {
    {"SqliteTypes",
     sqlite,
     {"CREATE TABLE t (a integer, b bigint, c smallint, d numeric(10,2), e double, f varchar(9), g char(9), h text,"
      " i date, j time, k timestamp, l boolean, m blob)"},
     "t\n",
     "t(a:N b:N c:N d:N e:N f:S g:S h:S i:T j:T k:T)"},
    {"PostgresTypes",
     postgresql,
     {"CREATE TABLE t (a integer, b bigint, c smallint, d numeric(10,2), e double precision, f varchar(9), g char(9),"
      " h text, i date, j time, k timestamp, l boolean, m bytea, n uuid, o json, p interval, q real)"},
     "t\n",
     "t(a:N b:N c:N d:N e:N f:S g:S h:S i:T j:T k:T l:S o:S p:S q:N)"},
    {"MariaDbTypes",
     mariadb,
     {"CREATE TABLE t (a integer, b bigint, c tinyint, d numeric(10,2), e double, f varchar(9), g char(9), h text,"
      " i date, j time, k timestamp, l boolean, m blob, n bit, o json, p float)"},
     "t\n",
     "t(a:N b:N c:N d:N e:N f:S g:S h:S i:T j:T k:T l:N o:S p:N)"},
    {"MariaDbCommentsDescribe",
     mariadb,
     {"CREATE TABLE t (a int COMMENT 'Größe in €', b int)"},
     "t\n",
     "t(a:N/Größe in € b:N)"},
    {"SqliteOddNames",
     sqlite,
     {"CREATE TABLE \"größe € x\" (\"ein feld\" int, \"a\"\"b\" int)", "CREATE TABLE \"it's\" (\"100%\" int)"},
     "größe € x\nit's\n",
     "it's(100%:N)größe € x(ein feld:N a\"b:N)"},
    {"PostgresOddNames",
     postgresql,
     {"CREATE TABLE \"größe € x\" (\"ein feld\" int, \"a\"\"b\" int)", "CREATE TABLE \"it's\" (\"100%\" int)"},
     "größe € x\nit's\n",
     "it's(100%:N)größe € x(ein feld:N a\"b:N)"},
    {"MariaDbOddNames",
     mariadb,
     {"CREATE TABLE \"größe € x\" (\"ein feld\" int, \"a\"\"b\" int)", "CREATE TABLE \"it's\" (\"100%\" int)"},
     "größe € x\nit's\n",
     "it's(100%:N)größe € x(ein feld:N a\"b:N)"},
    {"ATableNameIsAPattern",
     sqlite,
     {"CREATE TABLE a_b (x int)", "CREATE TABLE aXb (x date)"},
     "a_b\n",
     "t_x(x:N)a_b(t_x:t/t_x (Automatically created) x:T)"},
    {"ATableThatIsGoneIsEmpty", postgresql, {"CREATE TABLE t (x int)", "DROP TABLE t"}, "t\n", "t()"},
    {"AViewHasColumnsToo", postgresql, {"CREATE TABLE t (x int)", "CREATE VIEW v AS SELECT x FROM t"}, "v\n", "v(x:N)"},
};

} // namespace

class DatabaseImport : public testing::TestWithParam<Import>
{};

TEST_P(DatabaseImport, GivesRecords)
{
    const auto window = freshDatabase(GetParam().kind);
    for (const CString& statement : GetParam().statements)
        window->database.ExecuteSQL(statement);
    EXPECT_EQ(importTables(GetParam().tables), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Rows, DatabaseImport, testing::ValuesIn(kImports),
                         [](const auto& row) { return row.param.name; });

TEST(Database, ListsEveryTableOfEverySchemaAndNoView)
{
    const auto window = freshDatabase(postgresql);
    for (const char* statement : {"CREATE SCHEMA s", "CREATE TABLE public.t (x int, y text)",
                                  "CREATE TABLE s.t (x date)", "CREATE VIEW v AS SELECT 1"})
        window->database.ExecuteSQL(statement);
    CTables tables(&window->database);
    ASSERT_EQ(tables.Open(nullptr, nullptr, nullptr, "'TABLE'"), 1);
    CString listed;
    for (; !tables.IsEOF(); tables.MoveNext())
        listed += tables.tableOwner + "." + tables.tableName + " " + tables.tableType + "\n";
    EXPECT_EQ(listed, "public.t TABLE\ns.t TABLE\n");
    EXPECT_EQ(importTables("t\n"), "t(x:N y:S)") << "the driver answers for the current schema";
}

TEST(Database, RunsStatementsWithTextsOfAnyLengthAndUndoesThem)
{
    CString text = "größe ' ? ";
    for (int i = 0; i < 9000; ++i)
        text += "€\U0001F600"; // one of them lies across every border
    for (const Kind kind : {sqlite, postgresql, mariadb}) {
        const auto window = freshDatabase(kind);
        CDatabase& database = window->database;
        database.ExecuteSQL("CREATE TABLE t (a varchar(20) primary key, b text)");
        {
            CStatement insert(database, "INSERT INTO t VALUES (?, ?)");
            EXPECT_EQ(insert.execute({"kept", text}), 1);
            database.BeginTrans();
            EXPECT_EQ(insert.execute({"undone", ""}), 1);
            database.Rollback();
            database.BeginTrans();
            EXPECT_EQ(insert.execute({"", ""}), 1);
            database.CommitTrans();
            EXPECT_THROW(insert.execute({"kept", "again"}), CDBException);
        }
        CStatement select(database, "SELECT a, b FROM t ORDER BY a");
        CString rows;
        for (select.execute(); select.fetch();)
            rows += select.queryText(1) + "=" + select.queryText(2) + ";";
        EXPECT_EQ(rows, "=;kept=" + text + ";") << kind;
    }
}

TEST(Database, ARefusedLogonIsToldFromOtherFailures)
{
    const struct
    {
        CString source, logon;
        const char* state;
        bool refused;
    } cases[] = {
        {postgres().connection("postgres"), logonText("typeforge", "wrong"), "08001", true},
        {postgres().connection("postgres"), "", "08001", true},
        {postgres().connection("nowhere"), postgres().logon(), "08001", false},
        {mariaDb().connection("mysql"), logonText("typeforge", "wrong"), "28000", true},
        {mariaDb().connection("nowhere"), mariaDb().logon(), "37000", false},
        {"Driver=/no/such/driver.so;", "", "01000", false},
        {"no such source", "", "IM002", false},
    };
    for (const auto& failure : cases) {
        CDatabase database;
        try {
            database.Open(failure.source, CDatabase::readOnly, failure.logon);
            ADD_FAILURE() << failure.source << " opened";
        } catch (const CDBException& error) {
            EXPECT_EQ(error.queryState(), failure.state) << error.what();
            EXPECT_EQ(error.isLogonRefused(), failure.refused) << error.what();
            EXPECT_THAT(error.what(), testing::EndsWith(" (SQLSTATE " + CString(failure.state) + ")"));
        }
        EXPECT_FALSE(database.IsOpen());
    }
}

TEST(Database, AServerThatGoesLeavesAnErrorAndAConnectionThatCloses)
{
    const auto breakOff = [](auto&& server, const CString& name) {
        Connected window(server.connection(name), server.logon());
        EXPECT_NO_THROW(importTables("nothing\n"));
        window.database.BeginTrans();
        window.database.ExecuteSQL("CREATE TABLE t (x int)");
        server.stop();
        EXPECT_THROW(importTables("t\n"), CDBException);
        EXPECT_THROW(window.database.ExecuteSQL("DROP TABLE t"), CDBException);
        EXPECT_THROW(window.database.Open(server.connection(name)), CDBException);
        EXPECT_TRUE(window.database.Open("Driver=SQLite3;Database=" + folder().path("other") + ";"));
        EXPECT_EQ(importTables("t\n"), "t()");
    };
    breakOff(PostgresServer(), "postgres");
    breakOff(MariaDbServer(), "mysql");
}

TEST(Database, ListsDataSourcesCutToTheirWidths)
{
    const CString longName(60, 'n');
    setenv("ODBCINI",
           folder()
               .write("user.ini", "[Aufträge]\nDriver=SQLite3\n[" + longName + "]\nDriver=" + CString(400, 'd') + "\n")
               .c_str(),
           1);
    std::vector<DataSource> sources;
    EXPECT_TRUE(listDataSources(sources));
    CString listed;
    for (const DataSource& source : sources)
        listed += source.name + "=" + source.description + "\n";
    EXPECT_EQ(listed, "Aufträge=SQLite3\n" + longName.substr(0, 49) + "=" + CString(299, 'd') + "\n");
}

// The program as a whole: status, standard error and what it wrote.
TEST(Database, TheCommandLineImportsADataSource)
{
    const CString ini =
        folder().write("cli.ini", "[Orders]\nDriver=SQLite3\nDatabase=" + folder().path("orders") +
                                      "\n[Empty]\nDriver=SQLite3\nDatabase=" + folder().path("none") + "\n");
    Connected("Driver=SQLite3;Database=" + folder().path("orders") + ";")
        .database.ExecuteSQL("CREATE TABLE b (x int); CREATE TABLE a (y text); CREATE VIEW v AS SELECT x FROM b");
    const struct
    {
        CString arguments;
        int status;
        CString output;
    } cases[] = {
        {"Orders -l", 0, "\\a\t\n\\b\t\n"},
        {"Orders -l -t v -b 'x\\y'", 0, "x\\y\\v\t\n"},
        {"Orders --type a", 0,
         "<BROKERTYPEDESCRIPTION NAME=\"\\a\"><ROW><FIELD NAME=\"y\" TYPE=\"String\"/></ROW></BROKERTYPEDESCRIPTION>"},
        {"Empty -l", 1, "typeforge-import: nothing was imported from Empty\n"},
        {"Other -l", 1,
         "typeforge-import: [unixODBC][Driver Manager]Data source name not found and no default driver specified "
         "(SQLSTATE IM002)\n"},
    };
    for (const auto& run : cases) {
        const CString out = folder().path("out");
        const int status = std::system(
            ("ODBCINI=" + ini + " " TEST_BUILD_DIR "/typeforge-import odbc " + run.arguments + " >" + out + " 2>&1")
                .c_str());
        EXPECT_EQ(WEXITSTATUS(status), run.status) << run.arguments;
        EXPECT_EQ(TempDir::read(out), run.output) << run.arguments;
    }
}
