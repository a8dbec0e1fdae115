// Compares creating 10,000 types in the repository `local` with a bare loop of the same statements over ODBC, with one
// transaction for each type. The creation also renders and checks each document. Both run alternately, each time on a
// new database.
//
//     build/bench_create_types [TYPES]

#include "Broker/BrokerSession.h"
#include "Broker/CreationRun.h"
#include "Import/Dtd/DTDMsg.h"
#include "support/TempDir.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

constexpr int kRuns = 9;

struct Type
{
    CString name;
    CString document;
};

void check(SQLRETURN result)
{
    if (!SQL_SUCCEEDED(result))
        throw std::runtime_error("the bare loop failed");
}

// The baseline: what the client needs at least from the driver. Each statement is a transaction of its own.
void runBare(const CString& file, const std::vector<Type>& types)
{
    SQLHENV environment;
    SQLHDBC database;
    SQLHSTMT statement;
    SQLAllocEnv(&environment);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &database);
    const CString source = "Driver=SQLite3;Database=" + file + ";Timeout=10000;JournalMode=WAL;SyncPragma=NORMAL;";
    check(SQLDriverConnect(database, nullptr, (SQLCHAR*)source.c_str(), SQL_NTS, nullptr, 0, nullptr,
                           SQL_DRIVER_NOPROMPT));
    SQLAllocHandle(SQL_HANDLE_STMT, database, &statement);
    check(SQLExecDirect(statement,
                        (SQLCHAR*)"CREATE TABLE typeforge_types "
                                  "(name TEXT PRIMARY KEY, document TEXT NOT NULL, revision INTEGER NOT NULL)",
                        SQL_NTS));
    check(SQLPrepare(statement,
                     (SQLCHAR*)"WITH type (name, document) AS (SELECT ?, ?) "
                               "INSERT INTO typeforge_types (name, document, revision) "
                               "SELECT name, document, 0 FROM type WHERE true "
                               "ON CONFLICT (name) DO NOTHING RETURNING revision",
                     SQL_NTS));
    for (const Type& type : types) {
        SQLLEN lengths[] = {SQLLEN(type.name.size()), SQLLEN(type.document.size())};
        SQLBindParameter(statement, 1, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_LONGVARCHAR, type.name.size(), 0,
                         (void*)type.name.data(), lengths[0], &lengths[0]);
        SQLBindParameter(statement, 2, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_LONGVARCHAR, type.document.size(), 0,
                         (void*)type.document.data(), lengths[1], &lengths[1]);
        check(SQLExecute(statement));
        check(SQLFetch(statement));
        SQLINTEGER revision;
        check(SQLGetData(statement, 1, SQL_C_SLONG, &revision, sizeof revision, nullptr));
        SQLFreeStmt(statement, SQL_CLOSE);
    }
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    SQLDisconnect(database);
    SQLFreeHandle(SQL_HANDLE_DBC, database);
    SQLFreeEnv(environment);
}

void runOurs(const CString& folder, MsgBase& message)
{
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    BrokerSession session;
    if (const CString failure = session.open("local", 7250, nullptr); !failure.empty())
        throw std::runtime_error(failure);
    CStringList lines;
    CreationRun run(session, {[](const CString&, const CString&) { return OverwriteChoice::no; },
                              [&](const CString& line, ResultKind) { lines.push_back(line); }});
    if (run.run(message) != 0)
        throw std::runtime_error("types failed");
}

// Returns the wall clock time of some work. The folder is made before and removed after it.
double secondsOf(const std::function<void(const TempDir&)>& work)
{
    const TempDir folder;
    const auto start = std::chrono::steady_clock::now();
    work(folder);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

CString dtdOf(int types)
{
    CString dtd;
    for (int i = 0; i < types; ++i)
        dtd += "<!ELEMENT record" + std::to_string(i) + " (number, customer, street, city, total)>\n";
    return dtd;
}

} // namespace

int main(int argc, char** argv)
{
    setenv("ODBCINI", "/dev/null", 1);
    DTDMessage message;
    message.parseData(dtdOf(argc > 1 ? std::atoi(argv[1]) : 10'000), "\\sys\\");
    std::vector<Type> types;
    message.beginEnum();
    while (Element* type = message.enumNext()) {
        types.push_back({type->queryPath() + type->queryName(), {}});
        type->asXML(types.back().document);
    }
    std::vector<double> bare, ours;
    for (int run = 0; run < kRuns; ++run) {
        bare.push_back(secondsOf([&](const TempDir& folder) { runBare(folder.path("types.db"), types); }));
        ours.push_back(secondsOf([&](const TempDir& folder) { runOurs(folder.path(), message); }));
    }
    std::sort(bare.begin(), bare.end());
    std::sort(ours.begin(), ours.end());
    std::printf("%zu types: bare loop %.3f s (%.3f to %.3f), creation run %.3f s (%.3f to %.3f), ratio %.2f\n",
                types.size(), bare[kRuns / 2], bare.front(), bare.back(), ours[kRuns / 2], ours.front(), ours.back(),
                ours[kRuns / 2] / bare[kRuns / 2]);
}
