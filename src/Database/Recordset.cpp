#include "Database/Recordset.h"

#include "Base/Utf8.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

static_assert(std::is_same_v<SQLLEN, long> && std::is_same_v<SQLHANDLE, void*>, "the headers say it without ODBC");

void CFieldExchange::bind(void* statement)
{
    for (std::size_t i = 0; i < fields.size(); ++i) {
        Field& field = fields[i];
        const SQLSMALLINT type = field.text ? SQL_C_CHAR : SQL_C_LONG;
        const auto size = static_cast<SQLLEN>(field.text ? field.buffer.size() : sizeof(LONG));
        if (!SQL_SUCCEEDED(SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 1), type, field.buffer.data(), size,
                                      &field.indicator)))
            CDBException::raise(SQL_HANDLE_STMT, statement);
    }
}

// Before a fetch: what a driver then leaves alone is null.
void CFieldExchange::clear()
{
    for (Field& field : fields)
        field.indicator = SQL_NULL_DATA;
}

// A text is packed behind its length, of which one byte is enough; a number as it lies in memory.
void CFieldExchange::store(CString& packed) const
{
    static_assert(kTextWidth <= 255);
    for (const Field& field : fields) {
        const bool isNull = field.indicator == SQL_NULL_DATA;
        if (field.number) {
            const LONG nothing = 0;
            packed.append(isNull ? reinterpret_cast<const char*>(&nothing) : field.buffer.data(), sizeof(LONG));
            continue;
        }
        // The driver's word on the length counts only where it says less than the terminator.
        std::size_t width = field.indicator >= 0 ? static_cast<std::size_t>(field.indicator) : isNull ? 0 : kTextWidth;
        width = std::min(width, kTextWidth);
        std::string_view text(field.buffer.data(), strnlen(field.buffer.data(), width));
        if (text.size() == kTextWidth)
            dropCutCharacter(text);
        packed += static_cast<char>(text.size());
        packed += text;
    }
}

void CFieldExchange::load(std::string_view packed) const
{
    for (const Field& field : fields) {
        std::size_t width = sizeof(LONG);
        if (field.text) {
            width = static_cast<unsigned char>(packed[0]);
            packed.remove_prefix(1);
            field.text->assign(packed.data(), width);
        } else {
            std::memcpy(field.number, packed.data(), width);
        }
        packed.remove_prefix(width);
    }
}

// The rows with all that the driver touches while it reads them.
struct CRecordset::Result
{
    OpenStatement statement;
    Catalogue catalogue;
    std::vector<Arguments> calls;
    CFieldExchange bound;
    std::vector<CString> rows = {}; // packed

    void read()
    {
        // What any driver can do: the snapshot is made here. A driver that knows only that may refuse to be told.
        SQLSetStmtAttr(statement.handle.get(), SQL_ATTR_CURSOR_TYPE,
                       reinterpret_cast<SQLPOINTER>(SQL_CURSOR_FORWARD_ONLY), SQL_IS_UINTEGER);
        SQLSetStmtAttr(statement.handle.get(), SQL_ATTR_CONCURRENCY, reinterpret_cast<SQLPOINTER>(SQL_CONCUR_READ_ONLY),
                       SQL_IS_UINTEGER);
        for (Arguments& call : calls) {
            run(call);
            bound.bind(statement.handle.get());
            while (fetch()) {
            }
            SQLFreeStmt(statement.handle.get(), SQL_CLOSE);
        }
    }

private:
    void run(Arguments& arguments)
    {
        std::array<SQLCHAR*, 4> text;
        std::ranges::transform(arguments, text.begin(), [](Argument& argument) {
            return argument ? reinterpret_cast<SQLCHAR*>(argument->data()) : nullptr;
        });
        SQLRETURN outcome;
        do
            outcome = catalogue.call(statement.handle.get(), text[0], SQL_NTS, text[1], SQL_NTS, text[2], SQL_NTS,
                                     text[3], SQL_NTS);
        while (outcome == SQL_STILL_EXECUTING);
        check(outcome);
    }

    bool fetch()
    {
        bound.clear();
        const SQLRETURN outcome = SQLFetch(statement.handle.get());
        if (outcome == SQL_NO_DATA)
            return false;
        check(outcome);
        bound.store(rows.emplace_back());
        return true;
    }

    void check(SQLRETURN outcome) const
    {
        if (!SQL_SUCCEEDED(outcome))
            CDBException::raise(SQL_HANDLE_STMT, statement.handle.get());
    }
};

void CRecordset::Close()
{
    result.reset();
    beginOfFile = endOfFile = true;
}

int CRecordset::openCatalogue(const Catalogue& catalogue, std::vector<Arguments> calls, UINT type)
{
    Close();
    if (!database || !isSupported(catalogue))
        return 0;
    openType = type;
    OpenStatement statement = database->allocateStatement();
    if (!statement)
        return 0;
    const auto reading =
        std::make_shared<Result>(Result{std::move(statement), catalogue, std::move(calls), CFieldExchange()});
    DoFieldExchange(reading->bound);
    database->wait([reading] { reading->read(); });
    result = reading;
    beginOfFile = endOfFile = result->rows.empty();
    MoveFirst();
    return 1;
}

bool CRecordset::isSupported(const Catalogue& catalogue) const
{
    SQLUSMALLINT supported = SQL_FALSE;
    if (!SQL_SUCCEEDED(SQLGetFunctions(database->handle(), catalogue.function, &supported)))
        return false;
#ifndef NDEBUG
    if (!supported)
        std::fprintf(stderr, "%s not supported\n", catalogue.name);
#endif
    return supported != SQL_FALSE;
}

void CRecordset::MoveFirst()
{
    if (result && !result->rows.empty())
        moveTo(0);
}

void CRecordset::MoveNext()
{
    if (endOfFile)
        return;
    if (position + 1 < result->rows.size())
        moveTo(position + 1);
    else
        endOfFile = true;
}

void CRecordset::moveTo(std::size_t row)
{
    position = row;
    beginOfFile = endOfFile = false;
    result->bound.load(result->rows[row]);
}
