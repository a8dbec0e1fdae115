#include "Platform/Database/Recordset.h"

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

void CRecordset::Close()
{
    statement.reset();
    bound.fields.clear();
    rows.clear();
    beginOfFile = endOfFile = true;
}

int CRecordset::openCatalogue(const Catalogue& catalogue, const std::array<const char*, 4>& arguments, UINT type)
{
    Close();
    if (!database || !isSupported(catalogue))
        return 0;
    openType = type;
    statement = database->allocateStatement();
    if (!statement)
        return 0;
    try {
        run(catalogue, arguments);
        DoFieldExchange(bound);
        bound.bind(statement.get());
        endOfFile = !fetch();
        beginOfFile = endOfFile;
    } catch (...) {
        Close();
        throw;
    }
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

void CRecordset::run(const Catalogue& catalogue, const std::array<const char*, 4>& arguments)
{
    // What any driver can do: the snapshot is made here. A driver that knows only that may refuse to be told.
    SQLSetStmtAttr(statement.get(), SQL_ATTR_CURSOR_TYPE, reinterpret_cast<SQLPOINTER>(SQL_CURSOR_FORWARD_ONLY),
                   SQL_IS_UINTEGER);
    SQLSetStmtAttr(statement.get(), SQL_ATTR_CONCURRENCY, reinterpret_cast<SQLPOINTER>(SQL_CONCUR_READ_ONLY),
                   SQL_IS_UINTEGER);
    std::array<SQLCHAR*, 4> text;
    std::transform(arguments.begin(), arguments.end(), text.begin(), [](const char* argument) {
        return reinterpret_cast<SQLCHAR*>(const_cast<char*>(argument)); // which isn't changed
    });
    SQLRETURN result;
    do
        result =
            catalogue.call(statement.get(), text[0], SQL_NTS, text[1], SQL_NTS, text[2], SQL_NTS, text[3], SQL_NTS);
    while (result == SQL_STILL_EXECUTING);
    if (!SQL_SUCCEEDED(result))
        CDBException::raise(SQL_HANDLE_STMT, statement.get());
}

bool CRecordset::fetch()
{
    bound.clear();
    const SQLRETURN result = SQLFetch(statement.get());
    if (result == SQL_NO_DATA)
        return false;
    if (!SQL_SUCCEEDED(result))
        CDBException::raise(SQL_HANDLE_STMT, statement.get());
    bound.store(rows.emplace_back());
    return true;
}

void CRecordset::MoveFirst()
{
    if (!rows.empty())
        moveTo(0);
}

void CRecordset::MoveNext()
{
    if (endOfFile)
        return;
    if (position + 1 < rows.size() || fetch())
        moveTo(position + 1);
    else
        endOfFile = true;
}

void CRecordset::moveTo(std::size_t row)
{
    position = row;
    beginOfFile = endOfFile = false;
    bound.load(rows[row]);
}
