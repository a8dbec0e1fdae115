#include "Database/CatalogueRows.h"

#include "Base/Utf8.h"
#include "Database/DBException.h"
#include "Database/DriverMessage.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstring>

static_assert(std::is_same_v<SQLLEN, long> && std::is_same_v<SQLHANDLE, void*>, "the headers say it without ODBC");

namespace {

void check(SQLRETURN outcome, void* statement)
{
    if (!SQL_SUCCEEDED(outcome))
        CDBException::raise(SQL_HANDLE_STMT, statement);
}

void run(void* statement, unsigned short function, CatalogueRows::Arguments& arguments)
{
    std::array<SQLCHAR*, 4> text;
    std::ranges::transform(arguments, text.begin(), [](std::optional<CString>& argument) {
        return argument ? reinterpret_cast<SQLCHAR*>(argument->data()) : nullptr;
    });
    const auto call = function == SQL_API_SQLTABLES ? SQLTables : SQLColumns;
    // ODBC: an asynchronous call is repeated with the same arguments until it is done.
    SQLRETURN outcome;
    do
        outcome = call(statement, text[0], SQL_NTS, text[1], SQL_NTS, text[2], SQL_NTS, text[3], SQL_NTS);
    while (outcome == SQL_STILL_EXECUTING);
    check(outcome, statement);
}

} // namespace

CatalogueRows::CatalogueRows(std::string_view shape)
{
    for (const char kind : shape)
        columns.push_back({kind == 't', 0, {}});
}

void CatalogueRows::append(void* statement, unsigned short function, Arguments arguments, CString& out)
{
    // Asks for the simplest cursor, which every driver has; it is enough, because all rows are read at once. Failures
    // are ignored: a driver that has no other cursor may reject the option.
    SQLSetStmtAttr(statement, SQL_ATTR_CURSOR_TYPE, reinterpret_cast<SQLPOINTER>(SQL_CURSOR_FORWARD_ONLY),
                   SQL_IS_UINTEGER);
    SQLSetStmtAttr(statement, SQL_ATTR_CONCURRENCY, reinterpret_cast<SQLPOINTER>(SQL_CONCUR_READ_ONLY),
                   SQL_IS_UINTEGER);
    run(statement, function, arguments);
    bind(statement);
    while (fetch(statement))
        store(out);
    SQLFreeStmt(statement, SQL_CLOSE);
}

void CatalogueRows::bind(void* statement)
{
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Column& column = columns[i];
        const SQLSMALLINT type = column.isText ? SQL_C_CHAR : SQL_C_LONG;
        const auto size = static_cast<SQLLEN>(column.isText ? column.buffer.size() : sizeof(LONG));
        check(SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 1), type, column.buffer.data(), size,
                         &column.indicator),
              statement);
    }
}

bool CatalogueRows::fetch(void* statement)
{
    for (Column& column : columns)
        column.indicator = SQL_NULL_DATA; // a column that the driver leaves alone is null
    const SQLRETURN outcome = SQLFetch(statement);
    if (outcome == SQL_NO_DATA)
        return false;
    check(outcome, statement);
    return true;
}

void CatalogueRows::store(CString& out) const
{
    for (const Column& column : columns) {
        const bool isNull = column.indicator == SQL_NULL_DATA;
        if (!column.isText) {
            LONG number = 0;
            if (!isNull)
                std::memcpy(&number, column.buffer.data(), sizeof number);
            putNumber(out, number);
            continue;
        }
        // A text ends at the driver's length or at its terminator, whichever comes first.
        std::size_t width = isNull                  ? 0
                            : column.indicator >= 0 ? static_cast<std::size_t>(column.indicator)
                                                    : kTextWidth;
        width = std::min(width, kTextWidth);
        std::string_view text(column.buffer.data(), strnlen(column.buffer.data(), width));
        if (text.size() == kTextWidth)
            dropPartialCharacter(text);
        putText(out, text);
    }
}
