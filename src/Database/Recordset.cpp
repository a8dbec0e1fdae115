#include "Database/Recordset.h"

#include "Database/DriverHost.h"
#include "Database/DriverMessage.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdio>
#include <utility>

// The rows of a result arrive in one answer, packed as texts and numbers in the order of the columns, and stay so. The
// members of the derived class hold the current row only.
namespace {

// The position of TABLE_NAME in the arguments and the rows of SQLTables and SQLColumns.
constexpr std::size_t kTableName = 2;

} // namespace

CString CFieldExchange::shape() const
{
    CString shape;
    for (const Field& field : fields)
        shape += field.text ? 't' : 'n';
    return shape;
}

std::size_t CFieldExchange::load(std::string_view rows) const
{
    MessageReader reader(rows);
    for (const Field& field : fields)
        if (field.text)
            *field.text = reader.text();
        else
            *field.number = reader.number();
    return rows.size() - reader.size();
}

void CRecordset::Close()
{
    rows.reset();
    beginOfFile = endOfFile = true;
}

int CRecordset::openCatalogue(unsigned short function, std::vector<Arguments> calls, UINT type)
{
    openType = type;
    const int isOpen = run(function, calls);
    const CString name = calls.front()[kTableName].value_or("");
    // The name as it is comes first: for most drivers and names a backslash is no escape.
    if (!isOpen || !IsEOF() || name.find('\\') == CString::npos)
        return isOpen;
    // "_" matches any character, also a backslash, and means the same to all drivers.
    for (Arguments& call : calls)
        std::ranges::replace(*call[kTableName], '\\', '_');
    if (!run(function, calls))
        return 0;
    keepRowsOf(name);
    return 1;
}

int CRecordset::run(unsigned short function, const std::vector<Arguments>& calls)
{
    Close();
    if (!database || !database->IsOpen())
        return 0;
    // Not in the constructor, which can't call the derived class yet.
    fields = {};
    DoFieldExchange(fields);
    CString request = startRequest(DriverRequest::catalogue);
    putNumber(request, function);
    putText(request, fields.shape());
    for (const Arguments& call : calls)
        for (const Argument& argument : call)
            putOptionalText(request, argument);
    CString answer = database->call(request);
    MessageReader reader(answer);
    const auto outcome = static_cast<CatalogueOutcome>(reader.number());
#ifndef NDEBUG
    if (outcome == CatalogueOutcome::unsupported)
        std::fprintf(stderr, "%s not supported\n", function == SQL_API_SQLTABLES ? "SQLTables" : "SQLColumns");
#endif
    if (outcome != CatalogueOutcome::listed)
        return 0;
    // The rows stay packed, and moveTo() unpacks one at a time: a catalogue can have very many.
    rows = answer.erase(0, answer.size() - reader.size());
    MoveFirst();
    return 1;
}

// Keeps the rows of exactly this table, because "_" may have matched other names.
void CRecordset::keepRowsOf(const CString& table)
{
    CString kept;
    for (std::string_view rest = *rows; !rest.empty();) {
        const std::string_view row = rest.substr(0, fields.load(rest));
        if (fields.textAt(kTableName) == table)
            kept += row;
        rest.remove_prefix(row.size());
    }
    rows = std::move(kept);
    beginOfFile = endOfFile = rows->empty();
    MoveFirst();
}

void CRecordset::MoveFirst()
{
    if (rows && !rows->empty())
        moveTo(0);
}

void CRecordset::MoveNext()
{
    if (endOfFile)
        return;
    if (next < rows->size())
        moveTo(next);
    else
        endOfFile = true;
}

void CRecordset::moveTo(std::size_t row)
{
    next = row + fields.load(std::string_view(*rows).substr(row));
    beginOfFile = endOfFile = false;
}
