// Compares `typeforge-import odbc` with a bare loop of the catalogue calls that it needs: 1,000 tables of 50 columns,
// in SQLite and in PostgreSQL. Both run alternately as whole processes. Wall clock times count, because the time is
// spent in driver and server.
//
//     build/bench_odbc_catalogue [TABLES [COLUMNS]]

#include "support/Servers.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kRuns = 7;

// The bare loop: fetches every row with the three columns that an importer needs.
int runBare(const std::string& connection)
{
    SQLHENV environment;
    SQLHDBC database;
    SQLHSTMT statement;
    SQLAllocEnv(&environment);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &database);
    if (!SQL_SUCCEEDED(SQLDriverConnect(database, nullptr, (SQLCHAR*)connection.c_str(), SQL_NTS, nullptr, 0, nullptr,
                                        SQL_DRIVER_NOPROMPT)))
        return 1;
    SQLCHAR name[256], remarks[256];
    SQLINTEGER type;
    SQLLEN length[3];
    std::vector<std::string> tables;
    SQLAllocHandle(SQL_HANDLE_STMT, database, &statement);
    SQLTables(statement, nullptr, 0, nullptr, 0, nullptr, 0, (SQLCHAR*)"'TABLE'", SQL_NTS);
    SQLBindCol(statement, 3, SQL_C_CHAR, name, sizeof name, length);
    while (SQL_SUCCEEDED(SQLFetch(statement)))
        tables.emplace_back(reinterpret_cast<char*>(name));
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    long columns = 0;
    for (const std::string& table : tables) {
        SQLAllocHandle(SQL_HANDLE_STMT, database, &statement);
        SQLColumns(statement, nullptr, 0, nullptr, 0, (SQLCHAR*)table.c_str(), SQL_NTS, nullptr, 0);
        SQLBindCol(statement, 4, SQL_C_CHAR, name, sizeof name, &length[0]);
        SQLBindCol(statement, 5, SQL_C_LONG, &type, sizeof type, &length[1]);
        SQLBindCol(statement, 12, SQL_C_CHAR, remarks, sizeof remarks, &length[2]);
        while (SQL_SUCCEEDED(SQLFetch(statement)))
            ++columns;
        SQLFreeHandle(SQL_HANDLE_STMT, statement);
    }
    SQLDisconnect(database);
    SQLFreeHandle(SQL_HANDLE_DBC, database);
    SQLFreeEnv(environment);
    std::printf("%zu tables, %ld columns\n", tables.size(), columns);
    return 0;
}

// Returns the wall clock time of a whole process.
double secondsOf(const std::string& command)
{
    const auto start = std::chrono::steady_clock::now();
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("failed: " + command);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void fill(const std::string& connection, int tables, int columns)
{
    static const char* const types[] = {"integer", "varchar(40)", "timestamp", "numeric(10,2)", "text"};
    CDatabase database;
    database.Open(connection, CDatabase::readWrite);
    database.ExecuteSQL("BEGIN");
    for (int table = 0; table < tables; ++table) {
        std::string sql = "CREATE TABLE table" + std::to_string(table) + " (";
        for (int column = 0; column < columns; ++column)
            sql += (column > 0 ? ", column" : "column") + std::to_string(column) + " " + types[column % 5];
        database.ExecuteSQL(sql + ")");
    }
    database.ExecuteSQL("COMMIT");
}

// Prints the medians of alternate runs, with minimum and maximum. The bare loop is a process of this program.
void compare(const char* name, const std::string& connection, const std::string& self, const std::string& importer)
{
    const std::string source = " '" + connection + "' ";
    std::vector<double> bare, whole;
    for (int run = 0; run < kRuns; ++run) {
        bare.push_back(secondsOf(self + " --bare" + source + ">/dev/null"));
        whole.push_back(secondsOf(importer + " odbc" + source + ">/dev/null"));
    }
    std::sort(bare.begin(), bare.end());
    std::sort(whole.begin(), whole.end());
    const double middle = bare[kRuns / 2], ours = whole[kRuns / 2];
    std::printf("%-12s bare loop %.3f s (%.3f to %.3f), typeforge-import %.3f s (%.3f to %.3f), ratio %.2f\n", name,
                middle, bare.front(), bare.back(), ours, whole.front(), whole.back(), ours / middle);
}

} // namespace

int main(int argc, char** argv)
{
    setenv("ODBCINI", "/dev/null", 1);
    if (argc == 3 && argv[1] == std::string("--bare"))
        return runBare(argv[2]);
    const int tables = argc > 1 ? std::atoi(argv[1]) : 1000;
    const int columns = argc > 2 ? std::atoi(argv[2]) : 50;
    const std::string importer = std::filesystem::path(argv[0]).parent_path() / "typeforge-import";

    const TempDir folder;
    const std::string sqlite = "Driver=SQLite3;Database=" + folder.path("catalogue.db") + ";";
    fill(sqlite, tables, columns);
    compare("SQLite", sqlite, argv[0], importer);

    const PostgresServer server;
    const std::string postgres = server.connection("postgres") + server.logon();
    fill(postgres, tables, columns);
    compare("PostgreSQL", postgres, argv[0], importer);
}
