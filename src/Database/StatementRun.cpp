#include "Database/StatementRun.h"

#include "Database/DBException.h"
#include "Database/DriverMessage.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

void check(SQLRETURN result, SQLHANDLE statement)
{
    if (!SQL_SUCCEEDED(result))
        CDBException::raise(SQL_HANDLE_STMT, statement);
}

// Returns a column of the current row, read in as many pieces as needed.
CString readText(SQLHANDLE statement, SQLUSMALLINT column)
{
    CString text;
    std::array<char, 4096> piece;
    for (;;) {
        SQLLEN left = 0; // bytes left of the value, this piece included
        const SQLRETURN result =
            SQLGetData(statement, column, SQL_C_CHAR, piece.data(), static_cast<SQLLEN>(piece.size()), &left);
        if (result == SQL_NO_DATA)
            return text;
        check(result, statement);
        if (left == SQL_NULL_DATA)
            return {};
        const std::size_t capacity = piece.size() - 1;
        const bool last = result == SQL_SUCCESS || (left >= 0 && static_cast<std::size_t>(left) <= capacity);
        text.append(piece.data(), strnlen(piece.data(), capacity)); // may be shorter: drivers keep characters whole
        if (last)
            return text;
    }
}

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

void runStatement(SQLHANDLE statement, std::vector<CString> values, CString& out)
{
    std::vector<SQLLEN> lengths; // of the values
    lengths.reserve(values.size());
    SQLFreeStmt(statement, SQL_CLOSE);
    bind(statement, values, lengths);
    const SQLRETURN result = SQLExecute(statement);
    if (result != SQL_NO_DATA) { // SQL_NO_DATA: a change that affected no row
        check(result, statement);
        fetchAll(statement, out);
    }
    SQLFreeStmt(statement, SQL_RESET_PARAMS); // the bound values end with this run
}
