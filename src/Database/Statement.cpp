#include "Database/Statement.h"

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

// A column of the row in hand, in as many pieces as it takes.
CString readText(SQLHANDLE statement, SQLUSMALLINT column)
{
    CString text;
    std::array<char, 4096> piece;
    for (;;) {
        SQLLEN left = 0; // of the value, this piece included
        const SQLRETURN result =
            SQLGetData(statement, column, SQL_C_CHAR, piece.data(), static_cast<SQLLEN>(piece.size()), &left);
        if (result == SQL_NO_DATA)
            return text;
        check(result, statement);
        if (left == SQL_NULL_DATA)
            return {};
        const std::size_t capacity = piece.size() - 1;
        const bool last = result == SQL_SUCCESS || (left >= 0 && static_cast<std::size_t>(left) <= capacity);
        text.append(piece.data(), strnlen(piece.data(), capacity)); // shorter where a driver keeps a character whole
        if (last)
            return text;
    }
}

// One run, with all that the driver touches.
struct Run
{
    std::shared_ptr<OpenStatement> statement;
    std::vector<CString> values;
    std::vector<SQLLEN> lengths; // of the values
    CStatement::Rows rows;

    void execute()
    {
        SQLHANDLE handle = statement->handle.get();
        SQLFreeStmt(handle, SQL_CLOSE);
        bind(handle);
        const SQLRETURN result = SQLExecute(handle);
        if (result != SQL_NO_DATA) { // the answer to a change that met no row
            check(result, handle);
            fetchAll(handle);
        }
        SQLFreeStmt(handle, SQL_RESET_PARAMS); // the values end with this run
    }

private:
    void bind(SQLHANDLE handle)
    {
        lengths.resize(values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            lengths[i] = static_cast<SQLLEN>(values[i].size());
            check(SQLBindParameter(handle, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, SQL_C_CHAR,
                                   SQL_LONGVARCHAR, std::max<SQLULEN>(values[i].size(), 1), 0, values[i].data(),
                                   lengths[i], &lengths[i]),
                  handle);
        }
    }

    void fetchAll(SQLHANDLE handle)
    {
        SQLSMALLINT columns = 0;
        check(SQLNumResultCols(handle, &columns), handle);
        if (columns == 0)
            return;
        SQLRETURN result;
        while ((result = SQLFetch(handle)) != SQL_NO_DATA) {
            check(result, handle);
            auto& row = rows.emplace_back();
            for (SQLSMALLINT column = 1; column <= columns; ++column)
                row.push_back(readText(handle, static_cast<SQLUSMALLINT>(column)));
        }
    }
};

} // namespace

CStatement::CStatement(CDatabase& openOn, const CString& sql) :
    database(openOn), statement(std::make_shared<OpenStatement>(openOn.allocateStatement()))
{
    database.wait([statement = statement, sql] {
        if (!*statement)
            CDBException::raise(SQL_HANDLE_DBC, statement->database->connection.get());
        auto* text = reinterpret_cast<SQLCHAR*>(const_cast<char*>(sql.c_str())); // which isn't changed
        check(SQLPrepare(statement->handle.get(), text, SQL_NTS), statement->handle.get());
    });
}

CStatement::Rows CStatement::execute(std::initializer_list<std::string_view> values)
{
    const auto run = std::make_shared<Run>(Run{statement, {values.begin(), values.end()}, {}, {}});
    database.wait([run] { run->execute(); });
    return std::move(run->rows);
}
