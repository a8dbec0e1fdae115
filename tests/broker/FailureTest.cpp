#include "Base/Secret.h"
#include "Base/ServerAddress.h"
#include "Repositories.h"
#include "TestFolders.h"
#include "support/Boxes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

const CString kTestClient = TEST_BUILD_DIR "/libtestclient1.so";

struct Client : Home
{
    CString reason; // why a client is not loaded
};

TEST_F(Client, IsLoadedOnlyWithTheRightInterfaces)
{
    constexpr char kNotAvailable[] = "The Broker COM client is not available or is of the wrong version";
    for (const CString& library : {CString(TEST_BUILD_DIR "/libtestclient2.so"), home.path("none.so"),
                                   home.write("text.so", "no library"), CString("libodbc.so.2")}) {
        useClient(library);
        BrokerSession session;
        EXPECT_EQ(kNotAvailable, session.open("local", 1, nullptr));
        EXPECT_NE(CString::npos, session.queryDescription().find(library)) << session.queryDescription();
    }
    useClient(kTestClient);
    EXPECT_FALSE(createVornObject("{00000000-0000-0000-0000-000000000000}", reason));
    EXPECT_TRUE(createVornObject(kVornServerClass, reason));
}

TEST_F(Client, IsNotLoadedWhereOthersMayWriteIt)
{
    namespace fs = std::filesystem;
    const fs::path library = home.path("up/clients/client.so"), link = home.path("up/link.so");
    fs::create_directories(library.parent_path());
    fs::copy_file(kTestClient, library);
    fs::create_symlink(library, link);
    const auto loads = [&](const fs::path& name) {
        useClient(name);
        return createVornObject(kVornServerClass, reason) != nullptr;
    };
    EXPECT_TRUE(loads(library));
    EXPECT_TRUE(loads(link));
    for (const auto& [part, mode] : {std::pair(library, 0775),
                                     {library, 0757},
                                     {library.parent_path(), 0775},
                                     {library.parent_path(), 01777},
                                     {fs::path(home.path("up")), 0757}}) {
        const fs::perms before = fs::status(part).permissions();
        fs::permissions(part, fs::perms(mode));
        EXPECT_FALSE(loads(library)) << part << ' ' << mode;
        EXPECT_FALSE(loads(link)) << part << ' ' << mode;
        fs::permissions(part, before);
    }
    for (const fs::path& part : {library, library.parent_path(), link})
        if (::lchown(part.c_str(), 65534, gid_t(-1)) == 0) { // only root may do that
            EXPECT_FALSE(loads(link)) << part;
            EXPECT_EQ(::lchown(part.c_str(), ::geteuid(), gid_t(-1)), 0);
        }
    EXPECT_TRUE(loads(link));
}

TEST_F(Client, StaysLoadedAsLongAsAnObjectLives)
{
    const auto loaded = [] {
        void* const library = dlopen(kTestClient.c_str(), RTLD_NOW | RTLD_NOLOAD);
        return library && dlclose(library) == 0;
    };
    useClient(kTestClient);
    VornObject<IVornIntegrationServer> server = createVornObject(kVornServerClass, reason);
    IVornConnection* opened = nullptr;
    ASSERT_EQ(VornResult::done, server->Logon(&opened));
    VornObject<IVornConnection> connection(opened, server.get_deleter());
    server = {};
    EXPECT_TRUE(loaded());
    connection = {};
    EXPECT_FALSE(loaded());
}

TEST_F(Client, EachResultOfACreationHasItsLine)
{
    useClient(kTestClient);
    BrokerSession session;
    ASSERT_EQ("", session.open("none", 1, nullptr));
    Types types(dtdOf(5));
    const Creation run(session, types.message);
    EXPECT_EQ((Lines{"e0 created successfully", "e1 modifed", "e2 - creation error", "", "e4 - creation error",
                     "the client's   words", "root created successfully"}),
              run.lines);
    EXPECT_EQ(2, run.errors);
    EXPECT_EQ(6, run.steps);
    const Creation cancelled(session, types.message, [](int done) { return done < 2; });
    EXPECT_EQ((Lines{"e0 created successfully", "e1 created successfully",
                     "e2 not created, since the creation was cancelled"}),
              Lines(cancelled.lines.begin(), cancelled.lines.begin() + 3));
    EXPECT_EQ(6u, cancelled.lines.size());
}

TEST(ServerAddress, IsReadInOneWay)
{
    const std::pair<const char*, const char*> rows[] = {{"local", "local:7"},
                                                        {"a.b:1", "a.b:1"},
                                                        {"[::1]", "[::1]:7"},
                                                        {"[::1]:5432", "[::1]:5432"},
                                                        {"::1", "[::1]:7"},
                                                        {"fe80::1%e", "[fe80::1%e]:7"},
                                                        {"127.0.0.1:65535", "127.0.0.1:65535"},
                                                        {"a:65536", ""},
                                                        {"a:0", ""},
                                                        {"a:", ""},
                                                        {":1", ""},
                                                        {"", ""},
                                                        {"a:1:2", ""},
                                                        {"[::1", ""},
                                                        {"[a]:1", ""},
                                                        {"[::1]1", ""},
                                                        {"a b", ""},
                                                        {"a;Database=b", ""},
                                                        {"a:+1", ""}};
    for (const auto& [text, expected] : rows) {
        const auto address = readServerAddress(text, 7);
        EXPECT_EQ(expected, address ? address->asText() : "") << text;
    }
}

// The client that is shipped, with a server of its own.
class Postgres : public Home
{
protected:
    void execute(const CString& sql, const CString& database = "typeforge")
    {
        CDatabase connection;
        connection.Open(server.connection(database), CDatabase::readWrite, server.logon());
        connection.ExecuteSQL(sql);
    }

    CString open(BrokerSession& session, const CString& user, const CString& password)
    {
        const BrokerAccount account{user, password};
        return session.open("127.0.0.1", static_cast<unsigned>(server.port), &account);
    }

    PostgresServer server;
};

TEST_F(Postgres, FailsInItsOwnWords)
{
    constexpr char kNoConnection[] = "Unable to establish a connection to Broker";
    constexpr char kLoginFailed[] = "Login Failed - Please check your Username/Password.";
    BrokerSession session;
    EXPECT_EQ(kNoConnection, open(session, server.user, server.password));
    EXPECT_NE(CString::npos, session.queryDescription().find("database \"typeforge\" does not exist"));

    execute("CREATE DATABASE typeforge", "postgres");
    execute("CREATE ROLE guest LOGIN PASSWORD 'guest'");
    EXPECT_EQ(kLoginFailed, open(session, server.user, "wrong"));
    EXPECT_NE(CString::npos, session.queryDescription().find("password authentication failed"));
    EXPECT_EQ(kLoginFailed, open(session, "nobody", server.password));
    EXPECT_EQ(kLoginFailed, session.open("127.0.0.1", static_cast<unsigned>(server.port), nullptr));
    EXPECT_EQ(kNoConnection, session.open("127.0.0.1", 1, nullptr));
    EXPECT_EQ(kNoConnection, session.open("127.0.0.1;Database=postgres", 1, nullptr));

    execute("CREATE ROLE \"ärmel\" SUPERUSER LOGIN PASSWORD 'a'; CREATE ROLE \"Anna\" SUPERUSER LOGIN PASSWORD 'a'");
    execute("CREATE ROLE otto LOGIN PASSWORD 'a'; CREATE ROLE \"OTTO\" SUPERUSER LOGIN PASSWORD 'a'");
    const std::pair<const char*, const char*> users[] = {{"ÄRMEL", ""}, {"ärmel", ""},          {"Anna", ""},
                                                         {"OTTO", ""},  {"anna", kLoginFailed}, {"ANNA", kLoginFailed}};
    for (const auto& [user, failure] : users)
        EXPECT_EQ(failure, open(session, user, "a")) << user;
    EXPECT_NE(CString::npos, session.queryDescription().find("failed for user \"ANNA\""));
    execute("DROP TABLE typeforge_types");

    const CString denied = "Repository Error (ERROR: permission denied for ";
    EXPECT_EQ(denied + "schema public", open(session, "GUEST", "guest").substr(0, denied.size() + 13));
    EXPECT_EQ("", open(session, server.user, server.password)); // creates the table
    execute("GRANT SELECT, INSERT ON typeforge_types TO guest");
    EXPECT_EQ(
        "Repository Error (The table typeforge_types exists, but this user has no right to UPDATE it (SQLSTATE 42501))",
        open(session, "guest", "guest"));
    execute("GRANT SELECT, INSERT, UPDATE ON typeforge_types TO guest");
    EXPECT_EQ("", open(session, "guest", "guest"));
}

#ifndef __SANITIZE_ADDRESS__ // its allocator keeps freed memory to detect later use

// Returns how often the two halves of a text occur in the process's memory as one text.
int countInMemory(std::string_view first, std::string_view second)
{
    std::ifstream maps("/proc/self/maps"), memory("/proc/self/mem", std::ios::binary);
    int found = 0;
    for (std::string line; std::getline(maps, line);) {
        unsigned long begin = 0, end = 0;
        if (line.find(" rw") == line.npos || std::sscanf(line.c_str(), "%lx-%lx", &begin, &end) != 2)
            continue;
        std::string bytes(end - begin, '\0');
        memory.seekg(static_cast<std::streamoff>(begin)).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        memory.clear();
        for (std::size_t at = 0; (at = bytes.find(first, at)) != bytes.npos; ++at)
            found += bytes.compare(at + first.size(), second.size(), second) == 0;
        explicit_bzero(bytes.data(), bytes.size()); // it may hold the searched text
    }
    return found;
}

TEST_F(Postgres, PasswordIsNowhereInMemoryWhenTheSessionIsOver)
{
    execute("CREATE DATABASE typeforge", "postgres");
    execute("DO $$BEGIN EXECUTE format('CREATE ROLE guest SUPERUSER LOGIN PASSWORD %L', 'never-' || 'seen'); END$$");
    {
        Secret password;
        password.text.reserve(64);
        password.text.append("never-").append("seen");
        BrokerSession session;
        EXPECT_EQ("", open(session, "guest", password.text));
        EXPECT_LT(0, countInMemory("never-", "seen")); // the test's own copy; the driver runs in another process
    }
    EXPECT_EQ(0, countInMemory("never-", "seen"));
}

#endif

TEST_F(Postgres, ATypeThatTheTableNeitherTakesNorShowsFails)
{
    execute("CREATE DATABASE typeforge", "postgres");
    BrokerSession session;
    ASSERT_EQ("", open(session, server.user, server.password));
    execute("CREATE FUNCTION drop_row() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; END'; CREATE TRIGGER t "
            "BEFORE "
            "INSERT ON typeforge_types FOR EACH ROW WHEN (new.name LIKE '%e1') EXECUTE FUNCTION drop_row()");
    Types types(dtdOf(40));
    const Creation run(session, types.message);
    EXPECT_EQ("e1 - creation error", run.lines[1]);
    EXPECT_EQ(1, run.errors);
    EXPECT_EQ(40u, rowsOf(server.connection("typeforge"), server.logon()).size());
}

TEST_F(Postgres, GoneInTheMiddleLeavesWholeTypesAndSaysWhy)
{
    execute("CREATE DATABASE typeforge", "postgres");
    BrokerSession session;
    ASSERT_EQ("", open(session, server.user, server.password));
    Types types(dtdOf(5));
    const Creation cut(session, types.message, [&](int done) {
        if (done == 3)
            execute("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = 'typeforge' "
                    "AND pid <> pg_backend_pid()");
        return true;
    });
    ASSERT_EQ(10u, cut.lines.size()); // two for each failed type, and one for unconfirmed types
    EXPECT_EQ("e2 created successfully", cut.lines[2]);
    EXPECT_EQ("e3 - creation error", cut.lines[3]);
    EXPECT_NE(CString::npos, cut.lines[4].find("terminating connection")) << cut.lines[4];
    EXPECT_EQ("The last types that were created may be lost: ", cut.lines[9].substr(0, 46));
    EXPECT_EQ(4, cut.errors);
    EXPECT_EQ(3u, rowsOf(server.connection("typeforge"), server.logon()).size());

    ASSERT_EQ("", open(session, server.user, server.password));
    const Creation killed(session, types.message, [&](int done) {
        if (done == 3)
            server.stop();
        return true;
    });
    EXPECT_EQ("e4 - creation error", killed.lines[4]);
    EXPECT_NE("", killed.lines[5]);
    EXPECT_EQ(3, killed.errors);
}

TEST_F(Postgres, ACrashLeavesTheFirstTypesAndNothingIsLostOnceARunHasEnded)
{
    execute("CREATE DATABASE typeforge", "postgres");
    Types types(dtdOf(3000));
    const auto all = types.all();
    for (const bool isCrashInside : {true, false}) {
        BrokerSession session;
        ASSERT_EQ("", open(session, server.user, server.password));
        const Creation run(session, types.message, [&](int done) {
            if (done == 1000 && isCrashInside) // by then some types have reached the disk
                std::this_thread::sleep_for(std::chrono::seconds(1));
            if (done == 2500 && isCrashInside)
                server.crash();
            return true;
        });
        EXPECT_EQ(isCrashInside, run.errors != 0);
        if (!isCrashInside)
            server.crash();
        server.startAgain("-c wal_writer_delay=10s"); // nothing else may flush types to the disk
        const auto rows = rowsOf(server.connection("typeforge"), server.logon());
        EXPECT_GT(rows.size(), isCrashInside ? 0 : 3000);
        EXPECT_LE(rows.size(), isCrashInside ? 3000 : 3001);
        EXPECT_TRUE(std::equal(rows.begin(), rows.end(), all.begin()));
    }
}

} // namespace
