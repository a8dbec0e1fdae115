// An ODBC driver whose answers a test writes by hand. "Rows=FILE" of the connection string names them: a line for each
// row, its values apart by tabs, an empty one null; a line "!TEXT" is a fetch that fails with TEXT. "Without=N" takes
// the function with ODBC's number N out of it, "Statements=0" its statements.

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Column
{
    SQLSMALLINT type;
    SQLPOINTER target;
    SQLLEN size;
    SQLLEN* indicator;
};

struct Handle
{
    std::string connection; // the whole string, also of the connection that a statement is on
    std::string error;
    std::ifstream rows;
    std::map<SQLUSMALLINT, Column> columns;
    bool executing = false;
};

Handle& of(SQLHANDLE handle)
{
    return *static_cast<Handle*>(handle);
}

std::string word(const std::string& connection, const std::string& key)
{
    const std::size_t start = connection.find(key + "=");
    if (start == std::string::npos)
        return {};
    const std::size_t value = start + key.size() + 1;
    return connection.substr(value, connection.find(';', value) - value);
}

SQLRETURN put(const Column& column, const std::string& value)
{
    *column.indicator = value.empty() ? SQL_NULL_DATA : static_cast<SQLLEN>(value.size());
    if (value.empty())
        return SQL_SUCCESS;
    if (column.type == SQL_C_LONG) {
        const SQLINTEGER number = std::atoi(value.c_str());
        std::memcpy(column.target, &number, sizeof number);
        return SQL_SUCCESS;
    }
    const std::size_t length = std::min(value.size(), static_cast<std::size_t>(column.size) - 1);
    std::memcpy(column.target, value.c_str(), length);
    static_cast<char*>(column.target)[length] = '\0';
    return length < value.size() ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

} // namespace

extern "C" {

SQLRETURN SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* out)
{
    if (kind == SQL_HANDLE_STMT && word(of(parent).connection, "Statements") == "0")
        return SQL_ERROR;
    auto* handle = new Handle;
    if (kind == SQL_HANDLE_STMT)
        handle->connection = of(parent).connection;
    *out = handle;
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE handle)
{
    delete &of(handle);
    return SQL_SUCCESS;
}
SQLRETURN SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER)
{
    return SQL_SUCCESS;
}
SQLRETURN SQLDriverConnect(SQLHDBC connection, SQLHWND, SQLCHAR* text, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLSMALLINT*,
                           SQLUSMALLINT)
{
    of(connection).connection = reinterpret_cast<const char*>(text);
    return SQL_SUCCESS;
}
SQLRETURN SQLDisconnect(SQLHDBC)
{
    return SQL_SUCCESS;
}
SQLRETURN SQLGetFunctions(SQLHDBC connection, SQLUSMALLINT function, SQLUSMALLINT* supported)
{
    const int without = std::atoi(word(of(connection).connection, "Without").c_str());
    if (function != SQL_API_ODBC3_ALL_FUNCTIONS)
        return SQL_ERROR;
    std::fill_n(supported, SQL_API_ODBC3_ALL_FUNCTIONS_SIZE, 0xFFFF);
    supported[without >> 4] &= static_cast<SQLUSMALLINT>(~(1 << (without & 15)));
    return SQL_SUCCESS;
}
SQLRETURN SQLColumns(SQLHSTMT statement, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*,
                     SQLSMALLINT)
{
    Handle& rows = of(statement);
    rows.executing = !rows.executing;
    if (rows.executing)
        return SQL_STILL_EXECUTING; // the first call is still at work
    rows.rows.open(word(rows.connection, "Rows"));
    return SQL_SUCCESS;
}
SQLRETURN SQLTables(SQLHSTMT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*,
                    SQLSMALLINT) __attribute__((alias("SQLColumns")));
SQLRETURN SQLNumResultCols(SQLHSTMT, SQLSMALLINT* count)
{
    *count = 12;
    return SQL_SUCCESS;
}
SQLRETURN SQLBindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER target, SQLLEN size,
                     SQLLEN* indicator)
{
    of(statement).columns[column] = {type, target, size, indicator};
    return SQL_SUCCESS;
}
SQLRETURN SQLFetch(SQLHSTMT statement)
{
    std::string line;
    if (!std::getline(of(statement).rows, line))
        return SQL_NO_DATA;
    if (line.starts_with('!')) {
        of(statement).error = line.substr(1);
        return SQL_ERROR;
    }
    std::istringstream values(line);
    SQLRETURN result = SQL_SUCCESS;
    for (const auto& [number, column] : of(statement).columns) {
        std::string value;
        std::getline(values, value, '\t');
        result = std::max(result, put(column, value));
    }
    return result;
}
SQLRETURN SQLError(SQLHENV, SQLHDBC, SQLHSTMT statement, SQLCHAR* state, SQLINTEGER* native, SQLCHAR* text,
                   SQLSMALLINT size, SQLSMALLINT* length)
{
    if (!statement || of(statement).error.empty())
        return SQL_NO_DATA;
    std::strcpy(reinterpret_cast<char*>(state), "HY000");
    *native = 7;
    *length = static_cast<SQLSMALLINT>(of(statement).error.copy(reinterpret_cast<char*>(text), size - 1));
    text[*length] = '\0';
    of(statement).error.clear();
    return SQL_SUCCESS;
}
}
