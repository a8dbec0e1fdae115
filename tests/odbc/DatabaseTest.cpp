#include "Database/DataSources.h"
#include "Database/Statement.h"
#include "Database/Tables.h"
#include "TestFolders.h"
#include "odbc/Import.h"
#include "support/ImportCommand.h"
#include "support/Servers.h"

#include <gmock/gmock.h>

#include <cctype>
#include <csignal>
#include <filesystem>
#include <list>
#include <pwd.h>
#include <sstream>
#include <unistd.h>

namespace {

// Returns the instance shared by all tests.
template <class Thing>
Thing& the()
{
    static Thing thing;
    return thing;
}

// Returns the entry of a data source for a server's database.
CString entryOf(const DatabaseServer& server, const CString& database)
{
    CString entry = server.connection(database);
    std::erase_if(entry, [](char c) { return c == '{' || c == '}'; });
    std::ranges::replace(entry, ';', '\n');
    return entry;
}

// Returns the protection of a connection: "TLS", "plain" or the SQLSTATE of the failure.
CString protectionOf(const CString& source, const CString& logon)
{
    try {
        Connected window(source, logon);
        const bool isPostgres = source.find("PostgreSQL") != CString::npos;
        const CString answer =
            runSql(window.database, isPostgres ? "SELECT version FROM pg_stat_ssl WHERE pid = pg_backend_pid()"
                                               : "SHOW SESSION STATUS LIKE 'Ssl_version'")
                .at(0)
                .back();
        return answer.empty() ? "plain" : "TLS";
    } catch (const CDBException& error) {
        return error.queryState();
    }
}

// Kinds of databases are named after the database that their servers start with.
const CString sqlite = "sqlite", postgres = "postgres", mariaDb = "mysql";

// Returns a connection to an empty database of a kind.
int freshCount = 0;

CString nameOfFresh()
{
    return "d" + std::to_string(freshCount);
}

Connected freshDatabase(const CString& kind)
{
    ++freshCount;
    const CString name = nameOfFresh();
    if (kind == sqlite)
        return Connected("Driver=SQLite3;Database=" + the<TempDir>().path(name) + ";");
    const auto& server = kind == postgres ? static_cast<DatabaseServer&>(the<PostgresServer>()) : the<MariaDbServer>();
    Connected(server.connection(kind), server.logon()).database.ExecuteSQL("CREATE DATABASE " + name);
    return Connected(server.connection(name), server.logon());
}

// Returns the ends of the names of the logs that the drivers of this process may write, a line each.
std::string logsOfDrivers()
{
    const std::string id = std::to_string(::getpid());
    std::istringstream children(TempDir::read("/proc/" + id + "/task/" + id + "/children"));
    std::string logs;
    for (std::string child; children >> child;)
        logs += ::getpwuid(::geteuid())->pw_name + child + ".log\n";
    return logs;
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
              CString("CREATE TABLE \"it's\" (\"100%\" int)"), CString("CREATE TABLE \"\\_\\\\c\" (x int)"),
              CString("CREATE TABLE a_b (x int)"), CString("CREATE TABLE \"aXb\" (y date)")})
            window.database.ExecuteSQL(statement);
        EXPECT_EQ(importTables("t\n"), "t(a:N b:N c:N d:N e:N f:S g:S h:S i:T j:T k:T" + row.fields) << row.kind;
        EXPECT_EQ(importTables("größe € x\nit's\n"), "it's(100%:N)größe € x(ein feld:N a\"b:N)") << row.kind;
        EXPECT_EQ(importTables("\\_\\\\c\n"), "\\_\\\\c(x:N)") << row.kind;
        EXPECT_THAT(importTables("a_b\n"), testing::AnyOf("a_b(x:N y:T)", "a_b(y:T x:N)")) << "a pattern";
    }
}

TEST(Database, TakesTablesOutOfEverySchemaAndDatabase)
{
    Connected window = freshDatabase(postgres);
    window.database.ExecuteSQL("CREATE SCHEMA \"s 2\"; CREATE TABLE public.t (x int, y text); "
                               "CREATE TABLE \"s 2\".t (z date); CREATE TABLE \"s 2\".only (id int); "
                               "CREATE VIEW v AS SELECT 1 AS z");
    CTables tables(&window.database);
    ASSERT_EQ(tables.Open(nullptr, nullptr, nullptr, "'TABLE'"), 1);
    CString listed;
    for (; !tables.IsEOF(); tables.MoveNext())
        listed += tables.tableOwner + "." + tables.tableName + " " + tables.tableType + "\n";
    EXPECT_EQ(listed, "public.t TABLE\ns 2.only TABLE\ns 2.t TABLE\n");
    EXPECT_EQ(importTables("t\nv\nonly\n"), "only(id:N)v(z:N)t(x:N y:S)") << "what the search path finds";
    window.database.ExecuteSQL("DROP TABLE public.t; CREATE SCHEMA s3; CREATE TABLE s3.t (x int)");
    EXPECT_EQ(importTables("t\n"), "t(z:T x:N)") << "of any owner";
    window.database.ExecuteSQL("DROP TABLE s3.t, \"s 2\".t");
    EXPECT_EQ(importTables("t\n"), "t()") << "gone since it was listed";

    Connected other = freshDatabase(mariaDb);
    other.database.ExecuteSQL("CREATE TABLE here (x int)");
    Connected second = freshDatabase(mariaDb);
    second.database.ExecuteSQL("CREATE TABLE here (y date)");
    EXPECT_EQ(importTables("here\n"), "here(y:T)") << "of the current database";
    Connected third = freshDatabase(mariaDb);
    CString many; // so many that the whole catalogue is read
    for (int i = 0; i < 20; ++i)
        many += "none\n";
    for (const CString& before : {CString(), many})
        for (const CString name : {"here", "HERE", "h_r_", "%HerE"})
            EXPECT_THAT(importTables(before + name + "\n"), testing::AnyOf(testing::StartsWith(name + "(x:N y:T)"),
                                                                           testing::StartsWith(name + "(y:T x:N)")));
}

TEST(Database, AServerThatFallsSilentIsGivenUp)
{
    for (const CString& kind : {postgres, mariaDb}) {
        freshDatabase(kind);
        const auto& server =
            kind == postgres ? static_cast<DatabaseServer&>(the<PostgresServer>()) : the<MariaDbServer>();
        for (const long bytes : {0, 40, 300}) {        // before, in and after the server's first answer
            static auto& lines = *new std::list<Line>; // leaked: abandoned connections still wait for it
            Line& line = lines.emplace_back(server.port);
            Connected window(server.connection(kind, line.port), server.logon());
            window.database.timeout = std::chrono::milliseconds(300);
            line.left = bytes;
            EXPECT_THAT([] { importTables("%\n"); },
                        testing::Throws<CDBException>(testing::Property(&CDBException::queryState, "S1T00")))
                << kind << bytes;
            EXPECT_THROW(window.database.ExecuteSQL("SELECT 1"), CDBException);
            EXPECT_FALSE(window.database.IsOpen());
        }
    }
}

// The MariaDB driver crashes if its connection breaks during a catalogue call.
TEST(Database, AConnectionThatBreaksAnywhereIsAnErrorAndTheNextOneWorks)
{
    constexpr int kCuts = 50;
    for (const CString& kind : {postgres, mariaDb}) {
        freshDatabase(kind).database.ExecuteSQL("CREATE TABLE cut (x int)");
        const CString name = nameOfFresh();
        const auto& server =
            kind == postgres ? static_cast<DatabaseServer&>(the<PostgresServer>()) : the<MariaDbServer>();
        long whole = 0;
        for (int cut = kCuts; cut >= 0; --cut) { // the first connection isn't cut
            Line line(server.port);
            line.breaks = true;
            if (cut < kCuts)
                line.left = whole * cut / kCuts;
            const auto import = [&] {
                Connected window(server.connection(name, line.port), server.logon());
                return importTables("cut\nnone\n");
            };
            if (cut == kCuts)
                EXPECT_EQ(import(), "none()cut(x:N)");
            else
                EXPECT_THROW(import(), CDBException) << kind << " after " << line.queryReceived() << " bytes";
            whole = std::max(whole, line.queryReceived());
        }
    }
}

TEST(Database, AServerThatIsSilentFromTheStartIsGivenUpByItsDriver)
{
    for (const CString& kind : {postgres, mariaDb}) {
        const auto& server =
            kind == postgres ? static_cast<DatabaseServer&>(the<PostgresServer>()) : the<MariaDbServer>();
        Line line(server.port);
        line.left = 0;
        CDatabase database;
        database.loginTimeout = std::chrono::seconds(1);
        database.timeout = std::chrono::seconds(20);
        EXPECT_THAT([&] { database.Open(server.connection(kind, line.port), CDatabase::readOnly, server.logon()); },
                    testing::Throws<CDBException>(testing::Property(&CDBException::queryState, testing::Ne("S1T00"))))
            << kind;
    }
}

// A connection that demands TLS never falls back to plain text. Others use TLS if the server offers it.
TEST(Database, TlsIsPreferredAndKeptWhereItIsAskedFor)
{
    const PostgresServer postgresTls(Tls::required);
    const MariaDbServer mariaDbTls(Tls::offered);
    const DatabaseServer &postgresPlain = the<PostgresServer>(), &mariaDbPlain = the<MariaDbServer>();
    const CString authority = "SSLCA=" + mariaDbTls.certificate() + ";";
    const TempDir folder;
    const CString file = folder.write("plain.dsn", "[ODBC]\n" + entryOf(postgresPlain, postgres) + "SSLmode=require\n");
    setenv("ODBCINI", folder.write("tls.ini", "[Tls]\n" + entryOf(mariaDbPlain, mariaDb) + "SSLmode=require\n").c_str(),
           1);
    // Without the authority's certificate driver 3.1 fails; 3.2 verifies the server's certificate by the password.
    const CString verified = "S1000 or TLS";
    const struct
    {
        CString source, outcome; // "TLS", "plain" or an SQLSTATE
    } cases[] = {
        {postgresTls.connection(postgres), "TLS"},
        {postgresTls.connection(postgres) + "SSLmode={ Require };", "TLS"},
        {postgresTls.connection(postgres) + "SSLmode=disable;", "08001"},
        {postgresPlain.connection(postgres), "plain"},
        {postgresPlain.connection(postgres) + "SSLmode=REQUIRE;", "08001"},
        {postgresPlain.connection(postgres) + "SSLmode=require;sslmode=disable;", "08001"},
        {postgresPlain.connection(postgres) + "CA=r;", "08001"},
        {postgresPlain.connection(postgres) + "SSLmode=required;", "S1009"},
        {"FILEDSN=" + file + ";", "08001"},
        {mariaDbTls.connection(mariaDb), "TLS"},
        {mariaDbTls.connection(mariaDb) + "SSLmode=disable;", "plain"},
        {mariaDbTls.connection(mariaDb) + "FORCETLS=0;", "plain"},
        {mariaDbTls.connection(mariaDb) + "SSLmode=require;", verified},
        {mariaDbTls.connection(mariaDb) + "SSLmode=require;" + authority, "TLS"},
        {mariaDbTls.connection(mariaDb) + "SSLmode=verify-full;", verified},
        {mariaDbTls.connection(mariaDb) + "SSLmode=verify-full;" + authority, "TLS"},
        {mariaDbPlain.connection(mariaDb), "plain"},
        {mariaDbPlain.connection(mariaDb) + "SSLmode=require;SSLVERIFY=0;", "S1000"},
        {mariaDbPlain.connection(mariaDb) + "SSLmode=verify-full;" + authority, "S1000"},
        {"DSN=Tls;", "S1000"},
        {"Driver=" TEST_BUILD_DIR "/libtest_driver.so;SSLmode=require;", "S1C00"},
    };
    for (const auto& [source, outcome] : cases)
        EXPECT_THAT(outcome, testing::HasSubstr(protectionOf(source, postgresTls.logon()))) << source;
}

TEST(Database, AUserWhoIsTakenOverTlsAloneIsNotAskedForThePasswordAgain)
{
    const MariaDbServer server(Tls::offered);
    Connected(server.connection(""), server.logon())
        .database.ExecuteSQL("CREATE USER careful IDENTIFIED BY 'right' REQUIRE SSL");
    const CString source = server.connection(""), off = source + "SSLmode=disable;";
    EXPECT_TRUE(CDatabase().Open(source, CDatabase::readOnly, logonText("careful", "right")));
    for (const auto& [password, isRefused] : {std::pair("right", false), {"wrong", true}})
        EXPECT_THAT([&] { CDatabase().Open(off, CDatabase::readOnly, logonText("careful", password)); },
                    testing::Throws<CDBException>(testing::Property(&CDBException::isLogonRefused, isRefused)));
}

// Each character is at both ends and in the middle.
TEST(Database, APasswordMayHoldAnyCharacter)
{
    for (const CString& kind : {postgres, mariaDb}) {
        const auto& server =
            kind == postgres ? static_cast<DatabaseServer&>(the<PostgresServer>()) : the<MariaDbServer>();
        Connected owner(server.connection(kind), server.logon());
        owner.database.ExecuteSQL(kind == postgres ? "CREATE ROLE guest LOGIN" : "CREATE USER guest");
        for (char c = ' '; c < 127; ++c) {
            if (std::isalnum(c) || (c == ' ' && kind == mariaDb)) // its driver trims white space
                continue;
            const CString password = {c, 'a', c, '4', '1', c};
            CString literal;
            for (const char each : password)
                literal.append(each == '\'' || (each == '\\' && kind == mariaDb) ? 2 : 1, each);
            owner.database.ExecuteSQL(
                "ALTER " + CString(kind == postgres ? "ROLE guest PASSWORD '" : "USER guest IDENTIFIED BY '") +
                literal + "'");
            EXPECT_NO_THROW(CDatabase().Open(server.connection(kind == postgres ? kind : ""), CDatabase::readOnly,
                                             logonText("guest", password)))
                << kind << " " << password;
        }
    }
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
        {"Driver=PostgreSQL Unicode;Server=/pass/auth;", first.logon(), "08001", false},
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
                        testing::Property(&CDBException::isLogonRefused, failure.refused))))
            << failure.source;
        EXPECT_FALSE(database.IsOpen()) << failure.source;
    }
}

// Debian's odbcinst.ini makes PostgreSQL's driver write a log, at times under a name that isn't the program's.
TEST(Database, LeavesNoLogOfADriverBehind)
{
    const auto& server = the<PostgresServer>();
    std::string logs;
    for (const char* database : {"postgres", "nowhere", "postgres", "postgres", "postgres", "postgres", "postgres"}) {
        CDatabase connection;
        try {
            connection.Open(server.connection(database), CDatabase::readOnly, server.logon());
        } catch (const CDBException&) {
            EXPECT_STREQ(database, "nowhere");
        }
        logs += logsOfDrivers();
    }
    TempDir folder;
    const pid_t killed = ::fork();
    if (killed == 0)
        [&]() noexcept { // an exception must not run the other tests here
            CDatabase connection;
            connection.Open(server.connection("postgres"), CDatabase::readOnly, server.logon());
            folder.write("logs", logsOfDrivers());
            ::raise(SIGKILL);
        }();
    ASSERT_EQ(::waitpid(killed, nullptr, 0), killed);
    logs += TempDir::read(folder.path("logs"));
    EXPECT_GE(std::ranges::count(logs, '\n'), 8);
    const auto isThere = [](const std::string& log) {
        return std::ranges::any_of(std::filesystem::directory_iterator("/tmp"),
                                   [&](const auto& entry) { return entry.path().string().ends_with(log); });
    };
    std::istringstream lines(logs);
    for (std::string log; lines >> log;) {
        for (int wait = 0; wait < 500 && isThere(log); ++wait) // the driver of a killed program ends by itself
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_FALSE(isThere(log)) << log;
    }
}

TEST(Database, AServerThatGoesLeavesAnErrorAndAConnectionThatCloses)
{
    MariaDbServer server;
    Connected window(server.connection(mariaDb), server.logon());
    window.database.ExecuteSQL("CREATE TABLE t (x int)");
    server.stop();
    EXPECT_THROW(importTables("t\n"), CDBException);
    EXPECT_THROW(window.database.ExecuteSQL("DROP TABLE t"), CDBException);
    EXPECT_THROW(window.database.Open(server.connection(mariaDb)), CDBException);
    EXPECT_TRUE(window.database.Open("Driver=SQLite3;Database=:memory:;", CDatabase::readWrite));
    EXPECT_EQ(importTables("t\n"), "t()");
}

// A different source, or a default of the driver, would import the wrong tables.
TEST(Database, ANameOpensItsDataSourceOrNone)
{
    const struct
    {
        CString entry, question, logon;
    } drivers[] = {
        {"Driver=SQLite3\nDatabase=", "SELECT file FROM pragma_database_list", ""},
        {"Driver=PostgreSQL Unicode\nServername=127.0.0.1\nPort=" + std::to_string(the<PostgresServer>().port) +
             "\nDatabase=postgres\n#",
         "SELECT current_database()", the<PostgresServer>().logon()},
        {"Driver=MariaDB Unicode\nServer=127.0.0.1\nPort=" + std::to_string(the<MariaDbServer>().port) +
             "\nDatabase=mysql\n#",
         "SELECT database()", the<MariaDbServer>().logon()},
    };
    char n = '1'; // in every name, because data sources are cached by name
    for (const auto& [entry, question, logon] : drivers) {
        const TempDir folder;
        const CString x(1, n++);
        std::vector<CString> names = {x,        "Sales (EU)" + x,     "größe" + x,         "x" + x, "X" + x, " " + x,
                                      x + "]x", CString(31, 'x') + x, CString(32, 'x') + x};
        for (const char c : CString("[{}(),;?*=!@"))
            names.insert(names.end(), {x + c + "x", c + x, x + c});
        CString ini, refused;
        for (const CString& name : names)
            ini += "[" + name + "]\n" + entry + folder.write(name, "") + "\n";
        setenv("ODBCINI", folder.write("odbc.ini", ini).c_str(), 1);
        for (const CString& name : names)
            try {
                CDatabase database;
                database.Open(dataSourceText(name), CDatabase::readOnly, logon);
                const CString opened = runSql(database, question).at(0).at(0);
                EXPECT_THAT(opened, testing::AnyOf(folder.path(name), "postgres", "mysql"));
            } catch (const CDBException& error) {
                EXPECT_EQ(error.queryState(), "IM002") << name << error.what();
                refused += name + "\n";
            }
        EXPECT_EQ(refused, "X" + x + "\n " + x + "\n" + x + "]x\n" + CString(32, 'x') + x + "\n{" + x + "\n" + x +
                               ";x\n;" + x + "\n" + x + ";\n");
        const CString braced = question.ends_with("current_database()") ? "x={}};x};" : ""; // not in other drivers
        const std::pair<CString, bool> connections[] = {{braced + "DSN={Sales (EU)" + x + "};", true},
                                                        {"dsn= {" + x + "}}x} ;", true},
                                                        {"DSN= x" + x + " ;", true},
                                                        {"DSN=X" + x, false},
                                                        {"DSN=none" + x, false}};
        for (const auto& [connection, isRight] : connections)
            if (isRight)
                EXPECT_TRUE(Connected(connection, logon).database.IsOpen()) << connection;
            else
                EXPECT_THROW(Connected(connection, logon), CDBException) << connection;
    }
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

// The whole program: exit status, standard error and output.
TEST(Database, TheCommandLineImportsADataSource)
{
    const TempDir folder;
    const CString orders = folder.path("orders"), says = "typeforge-import: ";
    const DatabaseServer& server = the<PostgresServer>();
    const CString onServer = "'" + server.connection(postgres) + "' -l ";
    const CString somebody = geteuid() == 0 ? "setpriv --reuid=65534 --clear-groups " : "";
    Connected(server.connection(postgres), server.logon())
        .database.ExecuteSQL("CREATE SCHEMA s; CREATE TABLE s.u (x int)");
    folder.write("password", server.password + "\r\nnot this");
    folder.write("cli.ini", "[Orders]\nDriver=SQLite3\nDatabase=" + orders + "\n[Empty]\nDriver=SQLite3\n" +
                                "[Text]\nDriver=SQLite3\nDatabase=" TEST_SOURCE_DIR "/README.md\n" +
                                "[Lost]\nDriver=SQLite3\nDatabase=" + folder.path("lost") + "\n");
    Connected("Driver=SQLite3;Database=" + orders + ";")
        .database.ExecuteSQL("CREATE TABLE b (x int); CREATE TABLE a (y text); CREATE VIEW v AS SELECT x FROM b");
    const struct
    {
        CString arguments;
        Answer answer;
    } cases[] = {
        {"Orders -l", {0, "\\a\t\n\\b\t\n", ""}},
        {"Orders -l -t v -b 'x\\y'", {0, "x\\y\\v\t\n", ""}},
        {"Orders -l -t a -t none", {1, "", "Orders: error: there is no table called none\n"}},
        {"Orders -l -t ' ' 2>&-", {2, "", ""}},
        {"Empty -l; ls", {0, "cli.ini\norders\npassword\n", "Empty: error: no types were found\n"}},
        {"Lost -l; ls",
         {0, "cli.ini\norders\npassword\n",
          "Lost: error: [SQLite]connect failed; its file is " + folder.path("lost") +
              ": No such file or directory (SQLSTATE S1000)\n"}},
        {"'Driver={none;PWD=secret;Database=orders'",
         {1, "", "Driver={none;PWD=***: error: [unixODBC][Driver Manager]Can't open lib 'none;PWD=***\n"}},
        {"Orders -o o --depfile d",
         {2, "", "typeforge-import: --depfile: odbc reads no files\nTry typeforge-import --help\n"}},
        {"Text -l -t a", {1, "", "Text: error: [SQLite]file is not a database (26) (SQLSTATE S1000)\n"}},
        {"'DSN=Empty;Pwd = {a;b};UID=u'", {1, "", "DSN=Empty;Pwd =***: error: no types were found\n"}},
        {"Orders -t b --report - -q -o /dev/null", {0, "", "1 type, 1 field: 1 typed, 0 left text\n"}},
        {"Other -l", {1, "", "Other: error: There is no data source called Other (SQLSTATE IM002)\n"}},
        {onServer + "-t u --user typeforge --password-file password", {0, "\\u\t\n", ""}},
        {onServer + "-t u --user typeforge --password-file password >&-",
         {3, "", says + "can't write standard output: Bad file descriptor\n"}},
        {onServer + "--user typeforge",
         {1, "", says + "there is no terminal to ask for the password; use --password-file\n"}},
        {"Orders -l -t v; export PGSSLMODE=Require; $import odbc Orders -l -t v; $import odbc 'Driver=PostgreSQL "
         "Unicode'",
         {1, "\\v\t\n\\v\t\n",
          "Driver=PostgreSQL Unicode: error: The variable PGSSLMODE is \"Require\", and none of disable, allow, "
          "prefer, "
          "require, verify-ca, verify-full (SQLSTATE S1009)\n"}},
        {"Orders -l -t v; chmod 755 .; chmod 444 cli.ini; cp $import import; " + somebody + "./import odbc DSN=Orders",
         {1, "\\v\t\n",
          "DSN=Orders: error: There is no data source called Orders; cli.ini is not read, because it is not writable "
          "(SQLSTATE IM002)\n"}},
    };
    for (const auto& run : cases)
        EXPECT_EQ(runShell(folder, "export ODBCINI=cli.ini; setsid -w $import odbc " + run.arguments), run.answer)
            << run.arguments;
}
