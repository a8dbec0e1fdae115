#include "TestFolders.h"
#include "odbc/Import.h"
#include "support/ImportCommand.h"
#include "support/Servers.h"

#include <gtest/gtest.h>

namespace {

struct Case
{
    CString arguments;
    Answer answer;
};

// Each case is an import of "$source"; its expected output calls that S.
void expectAnswers(const TempDir& folder, const CString& source, const std::vector<Case>& cases)
{
    for (const auto& [arguments, expected] : cases) {
        Answer answer = runShell(folder, "source='" + source +
                                             "'; logon='--user typeforge --password-file password'; export "
                                             "XDG_DATA_HOME=$PWD; $import odbc \"$source\" " +
                                             arguments);
        for (std::size_t at; (at = answer.err.find(source)) != CString::npos;)
            answer.err.replace(at, source.size(), "S");
        EXPECT_EQ(expected, answer) << arguments;
    }
}

CString typeOf(const CString& field)
{
    return "<BROKERTYPEDESCRIPTION NAME=\"\\t\"><ROW><FIELD NAME=\"" + field +
           "\" TYPE=\"Number\"/></ROW></BROKERTYPEDESCRIPTION>";
}

void execute(const DatabaseServer& server, const CString& database, const CString& sql)
{
    CDatabase connection;
    connection.Open(server.connection(database), CDatabase::readWrite, server.logon());
    connection.ExecuteSQL(sql);
}

} // namespace

TEST(TableChoice, PicksTheTableOfASchemaAndTellsTheOthers)
{
    const PostgresServer server;
    execute(server, "postgres",
            "CREATE SCHEMA a; CREATE SCHEMA b; CREATE TABLE a.t (x int); CREATE TABLE b.t (y int); CREATE TABLE "
            "\"a.dot\" (z int); CREATE TABLE a.dot (n int); CREATE TABLE u (v int); CREATE TABLE a.u (w int); CREATE "
            "TABLE u_u (); CREATE TABLE uxu (x int)");
    const TempDir folder;
    folder.write("password", server.password);
    const CString ofSource = "--source-user typeforge --source-password-file password ", program = "typeforge-import: ";
    expectAnswers(
        folder, server.connection("postgres"),
        {{"$logon -t a.t --type t", {0, typeOf("x"), ""}},
         {"$logon -t postgres.b.t --type t", {0, typeOf("y"), ""}},
         {"$logon -t a.t -t postgres.a.t --type t", {0, typeOf("x"), ""}},
         {"$logon -t a.dot -l", {0, "\\a.dot\t\n", ""}},
         {"$logon -t t -l --report - -q",
          {0, "\\t\t\n",
           "1 loss\nt: columns of several tables in one record: a.t, b.t\n\n1 record of several tables\n1 "
           "type, 2 fields: 2 typed, 0 left text\n"}},
         {"$logon -t u_u --strict", {1, "", "u_u: error: table hidden by another of its name: public.u_u\n"}},
         {"$logon --strict",
          {1, "",
           "t: error: columns of several tables in one record: a.t, b.t\n"
           "u: error: table hidden by another of its name: a.u\n"
           "u_u: error: table hidden by another of its name: public.u_u\n"}},
         {"$logon -t c.t -q", {1, "", "S: error: there is no table called c.t\n"}},
         {"$logon -t a.t -t b.t",
          {1, "", program + "a.t and b.t would become one type, t; import each alone, with its own --base-path\n"}},
         {"-t a.t --create local " + ofSource, {0, "t created successfully\n", ""}},
         {"-t a.t --create local $logon",
          {1, "",
           "S: error: connection to server at \"127.0.0.1\", port " + std::to_string(server.port) +
               " failed: fe_sendauth: no password supplied (SQLSTATE 08001); --source-user logs on to the "
               "database\n"}},
         {"$logon " + ofSource,
          {2, "",
           program + "--user and --source-user both name the database's user without --create; give one\nTry "
                     "typeforge-import --help\n"}}});
}

TEST(TableChoice, PicksTheTableOfADatabase)
{
    const MariaDbServer server;
    execute(server, "", "CREATE DATABASE one");
    execute(server, "", "CREATE DATABASE two");
    execute(server, "one", "CREATE TABLE t (x int)");
    execute(server, "two", "CREATE TABLE t (y int)");
    execute(server, "one", "CREATE TABLE c (z int COMMENT '" + CString(256, 'c') + "')");
    const TempDir folder;
    folder.write("password", server.password);
    expectAnswers(folder, server.connection(""),
                  {{"$logon -t one.t --type t", {0, typeOf("x"), ""}},
                   {"$logon -t two.t --type t", {0, typeOf("y"), ""}},
                   {"$logon -t c -l --report - | cut -f1",
                    {0, "\\c\n", "1 detail\n\n1 documentation cut short\n1 type, 1 field: 1 typed, 0 left text\n"}},
                   {"$logon -t t -l",
                    {0, "\\t\t\n", "S: warning: 1 loss: 1 record of several tables; --report FILE lists it\n"}}});
    expectAnswers(folder, server.connection("two"), {{"$logon -t t --type t", {0, typeOf("y"), ""}}});
}

TEST(TableChoice, KnowsTheSourceOfStoredTypesByItsDatabase)
{
    const TempDir folder;
    const CString source = "Driver=SQLite3;Database=" + folder.path("one") + ";";
    Connected(source).database.ExecuteSQL("CREATE TABLE t (x int)");
    expectAnswers(folder, source, {{"--create local", {0, "t created successfully\n", ""}}});
    Connected(source).database.ExecuteSQL("ALTER TABLE t ADD y int");
    Connected("Driver=SQLite3;Database=" + folder.path("two") + ";").database.ExecuteSQL("CREATE TABLE t (x int)");
    const CString replaced = "t modifed\n";
    expectAnswers(folder, "PWD=x;database=./one;DRIVER={SQLite3}",
                  {{"--create local --overwrite all", {0, replaced, ""}}});
    expectAnswers(folder, "Driver=SQLite3;Database=two",
                  {{"--create local --overwrite all",
                    {0, replaced,
                     "typeforge-import: 1 type of Driver=SQLite3;Database=" + folder.path("one") +
                         " was replaced by a different one; --base-path keeps them apart\n"}}});
}

TEST(TableChoice, TellsColumnsOfOneKeyAndTextsThatAreCut)
{
    const TempDir folder;
    const CString source = "Driver=SQLite3;Database=" + folder.path("keys") + ";", cut(255, 'n');
    for (const CString& table :
         {CString("ab (c int)"), CString("a (bc int)"), CString("abc (x int)"), "n (" + cut + "n int)",
          cut + "n (x int)", CString("g (\"a\x01\" int, y AS (1) STORED, z AS (1))")})
        Connected(source).database.ExecuteSQL("CREATE TABLE " + table);
    expectAnswers(
        folder, source,
        {{"-t g -q -l --report -",
          {0, "\\g\t\n",
           "2 losses\ng: column of an unsupported type: y (generated)\ng: column of an unsupported type: z "
           "(generated)\n"
           "\n1 detail\ng: name adjusted: a  is a\uFFFD\n\n2 columns left out\n1 name adjusted\n"
           "1 type, 1 field: 1 typed, 0 left text\n"}},
         {"-t a -t ab --strict", {1, "", "ab: error: single field read as repeated: a.bc, because of ab.c\n"}},
         {"-t ab -t abc --strict", {1, "", "abc: error: single field read as repeated: ab.c, because of abc\n"}},
         {"-t n --strict",
          {1, "", "n: error: cut short by a bound: a column's name, to 255 bytes: " + CString(169, 'n') + "...\n"}},
         {"-q -o /dev/null --report - 2>&1 | sed -n 5p | cut -d: -f2,3",
          {0, " cut short by a bound: a table's name, to 255 bytes\n", ""}}});
}

TEST(TableChoice, TellsTablesThatCantBeNamed)
{
    const TempDir folder;
    const CString source = "Driver=SQLite3;Database=" + folder.path("odd") + ";";
    for (const CString name : {"", " ", "two\nlines", " led", "z", "a_", "aa"})
        Connected(source).database.ExecuteSQL("CREATE TABLE \"" + name + "\" (x int)");
    const CString left = "S: error: table whose name can't be looked up: ";
    expectAnswers(folder, source,
                  {{"-l -t aa -t z", {0, "\\z\t\n\\aa\t\n", ""}},
                   {"-l --strict",
                    {1, "",
                     left + "\"\"\n" + left + "\" \"\n" + left + "\" led\"\n" + left +
                         "\"two lines\"\na_: error: columns of several tables in one record: a_, aa\n"}},
                   {"-t a_ -q -o d; $import odbc \"$source\" -t a_ -q --diff d", {0, "", ""}}});
}
