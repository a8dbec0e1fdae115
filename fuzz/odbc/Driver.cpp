// An ODBC driver that returns the bytes given to setAnswers(): any number of rows, values of any bytes without a
// terminator, false lengths, and failures anywhere. It respects the sizes of buffers, because no caller could survive
// an overflow. After the last byte there is no more data.

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <string_view>

namespace {

struct Column
{
    SQLSMALLINT type;
    SQLPOINTER target;
    SQLLEN size;
    SQLLEN* indicator;
};

struct Statement
{
    std::map<SQLUSMALLINT, Column> columns;
};

std::string_view answers;

// Returns the next byte; 0 when there are no more, which makes outcome() say SQL_NO_DATA, so each statement ends.
unsigned next()
{
    const unsigned byte = answers.empty() ? 0 : static_cast<unsigned char>(answers[0]);
    answers.remove_prefix(answers.empty() ? 0 : 1);
    return byte;
}

std::string_view nextText(std::size_t most)
{
    const std::string_view text = answers.substr(0, std::min<std::size_t>(next(), most));
    answers.remove_prefix(std::min(text.size(), answers.size()));
    return text;
}

// Successes are twice as likely as other outcomes, so that rows come.
SQLRETURN outcome()
{
    static constexpr SQLRETURN kOutcomes[] = {SQL_NO_DATA, SQL_SUCCESS, SQL_SUCCESS, SQL_ERROR, SQL_SUCCESS_WITH_INFO};
    return kOutcomes[next() % std::size(kOutcomes)];
}

// The true length twice, then those that a driver may also return, and two that none should.
SQLLEN lengthOf(std::size_t size)
{
    const SQLLEN lengths[] = {SQLLEN(size), SQLLEN(size), SQL_NULL_DATA, SQL_NO_TOTAL, SQLLEN(size) * 3,
                              INT64_MAX,    -77};
    return lengths[next() % std::size(lengths)];
}

// Writes a value of any bytes into a column's buffer, without a terminator, and a length that may be false.
void fill(const Column& column)
{
    const std::size_t room = column.type == SQL_C_CHAR ? static_cast<std::size_t>(column.size) : sizeof(SQLINTEGER);
    const std::string_view value = nextText(room);
    std::memcpy(column.target, value.data(), value.size());
    *column.indicator = lengthOf(value.size());
}

} // namespace

extern "C" {

void setAnswers(const char* bytes, std::size_t size)
{
    answers = {bytes, size};
}

SQLRETURN SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE* out)
{
    *out = new Statement; // also for other kinds of handles, which are never read
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE handle)
{
    delete static_cast<Statement*>(handle);
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeStmt(SQLHSTMT, SQLUSMALLINT)
{
    return SQL_SUCCESS;
}
SQLRETURN SQLDriverConnect(SQLHDBC, SQLHWND, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT)
{
    return SQL_SUCCESS;
}
SQLRETURN SQLDisconnect(SQLHDBC)
{
    return SQL_SUCCESS;
}
SQLRETURN SQLGetInfo(SQLHDBC, SQLUSMALLINT question, SQLPOINTER out, SQLSMALLINT, SQLSMALLINT*)
{
    if (question != SQL_OWNER_USAGE && question != SQL_QUALIFIER_USAGE)
        return SQL_ERROR;
    *static_cast<SQLUINTEGER*>(out) = next() % 2;
    return SQL_SUCCESS;
}
SQLRETURN SQLGetFunctions(SQLHDBC, SQLUSMALLINT, SQLUSMALLINT* supported)
{
    std::fill_n(supported, SQL_API_ODBC3_ALL_FUNCTIONS_SIZE, 0xFFFF);
    return SQL_SUCCESS;
}
SQLRETURN SQLColumns(SQLHSTMT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*,
                     SQLSMALLINT)
{
    return outcome();
}
SQLRETURN SQLTables(SQLHSTMT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*,
                    SQLSMALLINT) __attribute__((alias("SQLColumns")));
SQLRETURN SQLPrepare(SQLHSTMT, SQLCHAR*, SQLINTEGER)
{
    return SQL_SUCCESS;
}
SQLRETURN SQLExecute(SQLHSTMT)
{
    return outcome();
}
SQLRETURN SQLNumResultCols(SQLHSTMT, SQLSMALLINT* columns)
{
    *columns = static_cast<SQLSMALLINT>(next() % 4);
    return SQL_SUCCESS;
}
SQLRETURN SQLBindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER target, SQLLEN size,
                     SQLLEN* indicator)
{
    static_cast<Statement*>(statement)->columns[column] = {type, target, size, indicator};
    return SQL_SUCCESS;
}
SQLRETURN SQLFetch(SQLHSTMT statement)
{
    const SQLRETURN result = outcome();
    if (SQL_SUCCEEDED(result))
        for (const auto& [number, column] : static_cast<Statement*>(statement)->columns)
            fill(column);
    return result;
}
SQLRETURN SQLGetData(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT type, SQLPOINTER target, SQLLEN size, SQLLEN* indicator)
{
    const SQLRETURN result = outcome();
    if (SQL_SUCCEEDED(result))
        fill({type, target, size, indicator});
    return result;
}
SQLRETURN SQLError(SQLHENV, SQLHDBC, SQLHSTMT, SQLCHAR* state, SQLINTEGER* native, SQLCHAR* text, SQLSMALLINT size,
                   SQLSMALLINT* length)
{
    const std::string_view message = nextText(static_cast<std::size_t>(size - 1));
    if (message.empty())
        return SQL_NO_DATA;
    std::memcpy(state, next() % 2 ? "08001" : "HY000", 6);
    *native = 7;
    // The driver manager expects a terminator, and its conversion loses it after invalid characters.
    std::transform(message.begin(), message.end(), text, [](char c) { return c & 0x60 ? c & 0x7F : '?'; });
    text[message.size()] = 0;
    *length = static_cast<SQLSMALLINT>(message.size());
    return SQL_SUCCESS;
}
}
