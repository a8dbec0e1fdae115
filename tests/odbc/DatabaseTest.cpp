#include "Platform/Tables.h"
#include "odbc/Import.h"
#include "support/ImportCommand.h"
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

} // namespace

TEST(Database, ColumnsOfEachKindBecomeFields)
{
    const CString common = "CREATE TABLE t (a integer, b bigint, c smallint, d numeric(10,2), e double precision, "
                           "f varchar(9), g char(9), h text, i date, j time, k timestamp, l boolean, ";
    const struct
    {
        Kind kind;
        const char *more, *fields;
    } cases[] = {
        {sqlite, "m blob)", ")"},
        {postgresql, "m bytea, n uuid, o json, p interval, q real)", " l:S o:S p:S q:N)"},
        {mariadb, "m blob, n bit, o json, q float, r tinyint COMMENT 'in €')", " l:N o:S q:N r:N/in €)"},
    };
    for (const auto& row : cases) {
        const auto window = freshDatabase(row.kind);
        window->database.ExecuteSQL(common + row.more);
        EXPECT_EQ(importTables("t\n"), CString("t(a:N b:N c:N d:N e:N f:S g:S h:S i:T j:T k:T") + row.fields);
    }
}

TEST(Database, NamesMayHoldAnyCharacterAndArePatterns)
{
    for (const Kind kind : {sqlite, postgresql, mariadb}) {
        const auto window = freshDatabase(kind);
        for (const char* statement :
             {"CREATE TABLE \"größe € x\" (\"ein feld\" int, \"a\"\"b\" int)", "CREATE TABLE \"it's\" (\"100%\" int)",
              "CREATE TABLE a_b (x int)", "CREATE TABLE \"aXb\" (y date)"})
            window->database.ExecuteSQL(statement);
        const CString records = importTables("größe € x\nit's\na_b\n");
        EXPECT_THAT(records, testing::EndsWith("it's(100%:N)größe € x(ein feld:N a\"b:N)")) << kind;
        EXPECT_THAT(records, testing::AllOf(testing::HasSubstr("x:N"), testing::HasSubstr("y:T"))) << kind;
    }
}

TEST(Database, ListsEveryTableOfEverySchemaAndNoView)
{
    const auto window = freshDatabase(postgresql);
    for (const char* statement : {"CREATE SCHEMA s", "CREATE TABLE public.t (x int, y text)",
                                  "CREATE TABLE s.t (x date)", "CREATE VIEW v AS SELECT 1 AS z"})
        window->database.ExecuteSQL(statement);
    CTables tables(&window->database);
    ASSERT_EQ(tables.Open(nullptr, nullptr, nullptr, "'TABLE'"), 1);
    CString listed;
    for (; !tables.IsEOF(); tables.MoveNext())
        listed += tables.tableOwner + "." + tables.tableName + " " + tables.tableType + "\n";
    EXPECT_EQ(listed, "public.t TABLE\ns.t TABLE\n");
    EXPECT_EQ(importTables("t\nv\n"), "v(z:N)t(x:N y:S)") << "the driver answers for the current schema";
    window->database.ExecuteSQL("DROP TABLE public.t, s.t");
    EXPECT_EQ(importTables("t\n"), "t()") << "gone since it was listed";
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
        const char* arguments;
        Answer answer;
    } cases[] = {
        {"Orders -l", {0, "\\a\t\n\\b\t\n", ""}},
        {"Orders -l -t v -b 'x\\y'", {0, "x\\y\\v\t\n", ""}},
        {"Empty -l", {1, "", "typeforge-import: nothing was imported from Empty\n"}},
        {"Other -l",
         {1, "",
          "typeforge-import: [unixODBC][Driver Manager]Data source name not found and no default "
          "driver specified (SQLSTATE IM002)\n"}},
    };
    for (const auto& run : cases)
        EXPECT_EQ(runShell(folder(), CString("ODBCINI=cli.ini $import odbc ") + run.arguments), run.answer);
}
