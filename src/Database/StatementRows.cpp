#include "Database/StatementRows.h"

#include "Base/Utf8.h"
#include "Database/DBException.h"
#include "Database/DriverMessage.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstring>

// A catalogue's rows are read into bound buffers of fixed size, because its texts are cut at 255 bytes in any case. The
// rows of other statements hold whole documents, so each value is fetched in pieces instead. Both functions write all
// rows into one text.
namespace {

constexpr std::size_t kTextWidth = 255; // bytes of a text of a catalogue; longer ones are cut between characters

// A column of a catalogue's rows.
struct Column
{
    bool isText;
    SQLLEN indicator;                        // the value's length or SQL_NULL_DATA, set by each fetch
    std::array<char, kTextWidth + 1> buffer; // of a text or a number
};

void check(SQLRETURN outcome, void* statement)
{
    if (!SQL_SUCCEEDED(outcome))
        CDBException::raise(SQL_HANDLE_STMT, statement);
}

void call(void* statement, unsigned short function, CatalogueArguments& arguments)
{
    std::array<SQLCHAR*, 4> text;
    std::ranges::transform(arguments, text.begin(), [](std::optional<CString>& argument) {
        return argument ? reinterpret_cast<SQLCHAR*>(argument->data()) : nullptr;
    });
    const auto list = function == SQL_API_SQLTABLES ? SQLTables : SQLColumns;
    // ODBC: an asynchronous call is repeated with the same arguments until it is done.
    SQLRETURN outcome;
    do
        outcome = list(statement, text[0], SQL_NTS, text[1], SQL_NTS, text[2], SQL_NTS, text[3], SQL_NTS);
    while (outcome == SQL_STILL_EXECUTING);
    check(outcome, statement);
}

// The driver writes to the addresses of the columns at each fetch, so the vector must not grow afterwards.
void bind(void* statement, std::vector<Column>& columns)
{
    SQLUSMALLINT number = 0;
    for (Column& column : columns) {
        const SQLSMALLINT type = column.isText ? SQL_C_CHAR : SQL_C_LONG;
        const auto size = static_cast<SQLLEN>(column.isText ? column.buffer.size() : sizeof(LONG));
        check(SQLBindCol(statement, ++number, type, column.buffer.data(), size, &column.indicator), statement);
    }
}

bool fetch(void* statement, std::vector<Column>& columns)
{
    for (Column& column : columns)
        column.indicator = SQL_NULL_DATA; // a column that the driver leaves alone is null
    const SQLRETURN outcome = SQLFetch(statement);
    if (outcome == SQL_NO_DATA)
        return false;
    check(outcome, statement);
    return true;
}

void store(const std::vector<Column>& columns, CString& out)
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

// Returns a column of the current row, read in as many pieces as needed.
CString readText(SQLHANDLE statement, SQLUSMALLINT column)
{
    CString text;
    std::array<char, 4096> piece;
    for (;;) {
        // SQLGetData() continues where it stopped, so the same call returns the next piece.
        SQLLEN left = 0; // bytes left of the value, this piece included
        const SQLRETURN result =
            SQLGetData(statement, column, SQL_C_CHAR, piece.data(), static_cast<SQLLEN>(piece.size()), &left);
        if (result == SQL_NO_DATA)
            return text;
        check(result, statement);
        if (left == SQL_NULL_DATA)
            return {};
        const std::size_t capacity = piece.size() - 1;
        // SQL_SUCCESS is the last piece. SQL_SUCCESS_WITH_INFO may have another reason than a cut value, so the length
        // decides then.
        const bool last = result == SQL_SUCCESS || (left >= 0 && static_cast<std::size_t>(left) <= capacity);
        text.append(piece.data(), strnlen(piece.data(), capacity)); // may be shorter: drivers keep characters whole
        if (last)
            return text;
    }
}

// The driver reads values and lengths during SQLExecute(), so neither vector may grow in between. Bound as text of any
// length, for which the limits of VARCHAR don't hold; an empty value still needs a column size of 1.
void bind(SQLHANDLE statement, std::vector<CString>& values, std::vector<SQLLEN>& lengths)
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        lengths.push_back(static_cast<SQLLEN>(values[i].size()));
        check(SQLBindParameter(statement, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, SQL_C_CHAR,
                               SQL_LONGVARCHAR, std::max<SQLULEN>(values[i].size(), 1), 0, values[i].data(), lengths[i],
                               &lengths[i]),
              statement);
    }
}

void fetchAll(SQLHANDLE statement, CString& out)
{
    SQLSMALLINT columns = 0;
    check(SQLNumResultCols(statement, &columns), statement);
    if (columns == 0)
        return;
    putNumber(out, columns);
    SQLRETURN result;
    while ((result = SQLFetch(statement)) != SQL_NO_DATA) {
        check(result, statement);
        for (SQLSMALLINT column = 1; column <= columns; ++column)
            putText(out, readText(statement, static_cast<SQLUSMALLINT>(column)));
    }
}

} // namespace

void runCatalogue(void* statement, unsigned short function, std::string_view shape, CatalogueArguments arguments,
                  CString& out)
{
    // Asks for the simplest cursor, which every driver has; it is enough, because all rows are read at once. Failures
    // are ignored: a driver that has no other cursor may reject the option.
    SQLSetStmtAttr(statement, SQL_ATTR_CURSOR_TYPE, reinterpret_cast<SQLPOINTER>(SQL_CURSOR_FORWARD_ONLY),
                   SQL_IS_UINTEGER);
    SQLSetStmtAttr(statement, SQL_ATTR_CONCURRENCY, reinterpret_cast<SQLPOINTER>(SQL_CONCUR_READ_ONLY),
                   SQL_IS_UINTEGER);
    call(statement, function, arguments);
    std::vector<Column> columns;
    for (const char kind : shape)
        columns.push_back({kind == 't', 0, {}});
    bind(statement, columns);
    while (fetch(statement, columns))
        store(columns, out);
    SQLFreeStmt(statement, SQL_CLOSE);
    SQLFreeStmt(statement, SQL_UNBIND); // the columns end with this run
}

void runStatement(SQLHANDLE statement, std::vector<CString> values, CString& out)
{
    std::vector<SQLLEN> lengths; // of the values
    lengths.reserve(values.size());
    // The cursor of an earlier run may still be open.
    SQLFreeStmt(statement, SQL_CLOSE);
    bind(statement, values, lengths);
    const SQLRETURN result = SQLExecute(statement);
    if (result != SQL_NO_DATA) { // SQL_NO_DATA: a change that affected no row
        check(result, statement);
        fetchAll(statement, out);
    }
    SQLFreeStmt(statement, SQL_RESET_PARAMS); // the bound values end with this run
}
