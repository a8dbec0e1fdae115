#include "Platform/Database/Tables.h"
#include "odbc/Import.h"
#include "support/ImportCommand.h"
#include "support/Servers.h"

#include <gmock/gmock.h>

namespace {

// The one of all tests.
template <class Thing>
Thing& the()
{
    static Thing thing;
    return thing;
}

// A kind of database is named as the one that its server has from the start.
const CString sqlite = "sqlite", postgres = "postgres", mariaDb = "mysql";

// A connection on a database of that kind that holds nothing else.
Connected freshDatabase(const CString& kind)
{
    static int count = 0;
    const CString name = "d" + std::to_string(++count);
    if (kind == sqlite)
        return Connected("Driver=SQLite3;Database=" + the<TempDir>().path(name) + ";");
    const auto& server = kind == postgres ? static_cast<DatabaseServer&>(the<PostgresServer>()) : the<MariaDbServer>();
    Connected(server.connection(kind), server.logon()).database.ExecuteSQL("CREATE DATABASE " + name);
    return Connected(server.connection(name), server.logon());
}

} // namespace

TEST(Database, TablesOfEachKindBecomeRecordsUnderAnyName)
{
    const CString common = "CREATE TABLE t (a integer, b bigint, c smallint, d numeric(10,2), e double precision, "
                           "f varchar(9), g char(9), h text, i date, j time, k timestamp, l boolean, ";
    const struct
    {
        CString kind, more, fields;
    } cases[] = {
        {sqlite, "m blob)", ")"},
        {postgres, "m bytea, n uuid, o json, p interval, q real)", " l:S o:S p:S q:N)"},
        {mariaDb, "m blob, n bit, o json, q float, r tinyint COMMENT 'in €')", " l:N o:S q:N r:Nin €)"},
    };
    for (const auto& row : cases) {
        Connected window = freshDatabase(row.kind);
        for (const CString& statement :
             {common + row.more, CString("CREATE TABLE \"größe € x\" (\"ein feld\" int, \"a\"\"b\" int)"),
              CString("CREATE TABLE \"it's\" (\"100%\" int)"), CString("CREATE TABLE a_b (x int)"),
              CString("CREATE TABLE \"aXb\" (y date)")})
            window.database.ExecuteSQL(statement);
        EXPECT_EQ(importTables("t\n"), "t(a:N b:N c:N d:N e:N f:S g:S h:S i:T j:T k:T" + row.fields);
        EXPECT_EQ(importTables("größe € x\nit's\n"), "it's(100%:N)größe € x(ein feld:N a\"b:N)") << row.kind;
        EXPECT_THAT(importTables("a_b\n"), testing::AnyOf("a_b(x:N y:T)", "a_b(y:T x:N)")) << "a pattern";
    }
}

TEST(Database, ListsEveryTableOfEverySchemaAndNoView)
{
    Connected window = freshDatabase(postgres);
    window.database.ExecuteSQL("CREATE SCHEMA s; CREATE TABLE public.t (x int, y text); CREATE TABLE s.t (x date);"
                               "CREATE VIEW v AS SELECT 1 AS z");
    CTables tables(&window.database);
    ASSERT_EQ(tables.Open(nullptr, nullptr, nullptr, "'TABLE'"), 1);
    CString listed;
    for (; !tables.IsEOF(); tables.MoveNext())
        listed += tables.tableOwner + "." + tables.tableName + " " + tables.tableType + "\n";
    EXPECT_EQ(listed, "public.t TABLE\ns.t TABLE\n");
    EXPECT_EQ(importTables("t\nv\n"), "v(z:N)t(x:N y:S)") << "the driver answers for the current schema";
    window.database.ExecuteSQL("DROP TABLE public.t, s.t");
    EXPECT_EQ(importTables("t\n"), "t()") << "gone since it was listed";
}

TEST(Database, ARefusedLogonIsToldFromOtherFailures)
{
    const DatabaseServer &first = the<PostgresServer>(), &second = the<MariaDbServer>();
    const struct
    {
        CString source, logon, state;
        bool refused;
    } cases[] = {
        {first.connection(postgres), logonText("typeforge", "wrong"), "08001", true},
        {first.connection(postgres), "", "08001", true},
        {first.connection("nowhere"), first.logon(), "08001", false},
        {second.connection(mariaDb), logonText("typeforge", "wrong"), "28000", true},
        {second.connection("nowhere"), second.logon(), "37000", false},
        {"Driver=/no/such/driver.so;", "", "01000", false},
        {"no such source", "", "IM002", false},
    };
    for (const auto& failure : cases) {
        CDatabase database;
        EXPECT_THAT([&] { database.Open(failure.source, CDatabase::readOnly, failure.logon); },
                    testing::Throws<CDBException>(testing::AllOf(
                        testing::Property(&CDBException::what, testing::EndsWith(" (SQLSTATE " + failure.state + ")")),
                        testing::Property(&CDBException::isLogonRefused, failure.refused))));
        EXPECT_FALSE(database.IsOpen());
    }
}

TEST(Database, AServerThatGoesLeavesAnErrorAndAConnectionThatCloses)
{
    MariaDbServer server;
    Connected window(server.connection(mariaDb), server.logon());
    window.database.BeginTrans();
    window.database.ExecuteSQL("CREATE TABLE t (x int)");
    server.stop();
    EXPECT_THROW(importTables("t\n"), CDBException);
    EXPECT_THROW(window.database.ExecuteSQL("DROP TABLE t"), CDBException);
    EXPECT_THROW(window.database.Open(server.connection(mariaDb)), CDBException);
    EXPECT_TRUE(window.database.Open("Driver=SQLite3;Database=" + the<TempDir>().path("other") + ";"));
    EXPECT_EQ(importTables("t\n"), "t()");
}

TEST(Database, ListsDataSourcesCutToTheirWidths)
{
    const CString ini = "[Aufträge]\nDriver=SQLite3\n[" + CString(60, 'n') + "]\nDriver=" + CString(400, 'd') + "\n";
    setenv("ODBCINI", the<TempDir>().write("user.ini", ini).c_str(), 1);
    std::vector<DataSource> sources;
    EXPECT_TRUE(listDataSources(sources));
    CString listed;
    for (const DataSource& source : sources)
        listed += source.name + "=" + source.description + "\n";
    EXPECT_EQ(listed, "Aufträge=SQLite3\n" + CString(49, 'n') + "=" + CString(299, 'd') + "\n");
}

// The program as a whole: status, standard error and what it wrote.
TEST(Database, TheCommandLineImportsADataSource)
{
    const TempDir folder;
    const CString orders = folder.path("orders");
    folder.write("cli.ini", "[Orders]\nDriver=SQLite3\nDatabase=" + orders + "\n[Empty]\nDriver=SQLite3\n");
    Connected("Driver=SQLite3;Database=" + orders + ";")
        .database.ExecuteSQL("CREATE TABLE b (x int); CREATE TABLE a (y text); CREATE VIEW v AS SELECT x FROM b");
    const struct
    {
        CString arguments;
        Answer answer;
    } cases[] = {
        {"Orders -l", {0, "\\a\t\n\\b\t\n", ""}},
        {"Orders -l -t v -b 'x\\y'", {0, "x\\y\\v\t\n", ""}},
        {"Empty -l", {1, "", "typeforge-import: nothing was imported from Empty\n"}},
        {"'DSN=Empty;Pwd={a;b};UID=u'", {1, "", "typeforge-import: nothing was imported from DSN=Empty;Pwd=***\n"}},
        {"Other -l",
         {1, "",
          "typeforge-import: [unixODBC][Driver Manager]Data source name not found and no default "
          "driver specified (SQLSTATE IM002)\n"}},
    };
    for (const auto& run : cases)
        EXPECT_EQ(runShell(folder, "ODBCINI=cli.ini $import odbc " + run.arguments), run.answer);
}
