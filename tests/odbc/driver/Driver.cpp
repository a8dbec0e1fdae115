// An ODBC driver for one connection, with handwritten results. "Rows=FILE" in the connection string names them: a line
// for each row, its values separated by tabs, an empty value null. Columns beyond the last value are left alone. A line
// "!TEXT" is a fetch that fails with TEXT, twice reported.
// "Without=N" removes the function with ODBC's number N, "Statements=0" its statements. With TEST_DRIVER_CRASHES in the
// environment a catalogue call ends the process.

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <sstream>
#include <string>

namespace {

// A column's function writes a value into the buffer that was bound to it.
struct Statement
{
    std::ifstream rows;
    std::map<SQLUSMALLINT, std::function<SQLRETURN(const std::string&)>> columns;
    bool executing = false;
};

std::string connection, error;
int errorsLeft = 0;

// Returns the value of a key in the connection string; empty if it has none.
std::string word(const std::string& key)
{
    std::smatch found;
    return std::regex_search(connection, found, std::regex(key + "=([^;]*)")) ? found[1].str() : "";
}

} // namespace

extern "C" {

SQLRETURN SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE, SQLHANDLE* out)
{
    if (kind == SQL_HANDLE_STMT && word("Statements") == "0")
        return SQL_ERROR;
    *out = new Statement; // also for other kinds of handles, which are never read
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE handle)
{
    delete static_cast<Statement*>(handle);
    return SQL_SUCCESS;
}
SQLRETURN SQLDriverConnect(SQLHDBC, SQLHWND, SQLCHAR* text, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLSMALLINT*,
                           SQLUSMALLINT)
{
    connection = reinterpret_cast<const char*>(text);
    return SQL_SUCCESS;
}
SQLRETURN SQLDisconnect(SQLHDBC)
{
    return SQL_SUCCESS;
}
SQLRETURN SQLGetFunctions(SQLHDBC, SQLUSMALLINT, SQLUSMALLINT* supported)
{
    const int without = std::atoi(word("Without").c_str());
    std::fill_n(supported, SQL_API_ODBC3_ALL_FUNCTIONS_SIZE, 0xFFFF);
    supported[without >> 4] &= static_cast<SQLUSMALLINT>(~(1 << (without & 15)));
    return SQL_SUCCESS;
}
SQLRETURN SQLColumns(SQLHSTMT statement, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*,
                     SQLSMALLINT)
{
    auto& [rows, columns, executing] = *static_cast<Statement*>(statement);
    if (std::getenv("TEST_DRIVER_CRASHES"))
        std::abort();
    executing = !executing;
    if (!executing)
        rows.open(word("Rows"));
    return executing ? SQL_STILL_EXECUTING : SQL_SUCCESS; // the first call is still executing
}
SQLRETURN SQLTables(SQLHSTMT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*,
                    SQLSMALLINT) __attribute__((alias("SQLColumns")));
SQLRETURN SQLBindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER target, SQLLEN size,
                     SQLLEN* indicator)
{
    static_cast<Statement*>(statement)->columns[column] = [=](const std::string& value) {
        *indicator = value.empty() ? SQL_NULL_DATA : static_cast<SQLLEN>(value.size());
        if (type == SQL_C_LONG)
            *static_cast<SQLINTEGER*>(target) = std::atoi(value.c_str());
        else if (std::snprintf(static_cast<char*>(target), size, "%s", value.c_str()) >= size)
            return SQL_SUCCESS_WITH_INFO;
        return SQL_SUCCESS;
    };
    return SQL_SUCCESS;
}
SQLRETURN SQLFetch(SQLHSTMT statement)
{
    auto& [rows, columns, executing] = *static_cast<Statement*>(statement);
    std::string line, value;
    if (!std::getline(rows, line))
        return SQL_NO_DATA;
    if (line.starts_with('!')) {
        error = line.substr(1);
        errorsLeft = 2;
        return SQL_ERROR;
    }
    std::istringstream values(line);
    SQLRETURN result = SQL_SUCCESS;
    for (const auto& [number, column] : columns) {
        if (std::getline(values, value, '\t'))
            result = std::max(result, column(value));
    }
    return result;
}
SQLRETURN SQLError(SQLHENV, SQLHDBC, SQLHSTMT, SQLCHAR* state, SQLINTEGER* native, SQLCHAR* text, SQLSMALLINT size,
                   SQLSMALLINT* length)
{
    if (errorsLeft == 0)
        return SQL_NO_DATA;
    --errorsLeft;
    std::copy_n("HY000", 6, state);
    *native = 7;
    *length = static_cast<SQLSMALLINT>(std::snprintf(reinterpret_cast<char*>(text), size, "%s", error.c_str()));
    return SQL_SUCCESS;
}
}
