#include "Database/Columns.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>

namespace {

// The number of tables that are looked up singly. The next lookup lists all tables instead, which takes a server longer
// than a few single ones.
constexpr int kMaxSingleLookups = 12;

constexpr char kAny = '\x80'; // a continuation byte, which comparable() copies from no name

// Returns a name in lower case, with `kAny` for each character outside of ASCII, because a database may compare those
// by its own collation.
CString comparable(std::string_view name)
{
    CString text;
    for (const char c : name)
        if ((c & 0xC0) != 0x80) // skips continuation bytes
            text += c & 0x80 ? kAny : lowerAscii(c);
    return text;
}

// Returns whether the database may match a name with a pattern. Compares characters as LIKE does. A pattern with "%" or
// an escape may match any name.
bool mayMatch(std::string_view pattern, std::string_view name)
{
    return pattern.find_first_of("%\\") != pattern.npos || std::ranges::equal(pattern, name, [](char a, char b) {
               return a == b || a == '_' || a == kAny || b == kAny;
           });
}

// Returns the tables that match `pattern`, or all if it is null, with their qualifiers.
std::vector<std::pair<CString, CString>> listTables(CDatabase* database, const char* pattern)
{
    std::vector<std::pair<CString, CString>> found;
    CTables tables(database);
    tables.Open(nullptr, nullptr, pattern, nullptr);
    for (tables.MoveFirst(); !tables.IsEOF(); tables.MoveNext())
        found.emplace_back(comparable(tables.tableName), tables.tableQualifier);
    return found;
}

} // namespace

std::set<CString> CColumns::qualifiersOf(const char* table)
{
    // The result of a single lookup needs no comparison, because the server has compared the names itself.
    const bool isSingle = lookups++ < kMaxSingleLookups;
    if (isSingle || lookups == kMaxSingleLookups + 1)
        listed = listTables(queryDatabase(), isSingle ? table : nullptr);
    std::set<CString> qualifiers;
    const CString pattern = comparable(table);
    for (const auto& [name, qualifier] : listed)
        if (isSingle || mayMatch(pattern, name))
            qualifiers.insert(qualifier);
    return qualifiers;
}

// Looks again everywhere if the first lookup finds nothing, because null does not mean "any" to some drivers.
// PostgreSQL's only looks in the schemas of the search path, unless the owner is a pattern. MariaDB's has databases as
// qualifiers and no owners. It only looks in the current database and takes no pattern, so each qualifier is looked up.
int CColumns::Open(const char* qualifier, const char* owner, const char* table, const char* column, UINT type)
{
    const Arguments asked = {argument(qualifier), argument(owner), argument(table), argument(column)};
    const int isOpen = openCatalogue(SQL_API_SQLCOLUMNS, {asked}, type);
    if (!isOpen || !IsEOF() || qualifier || owner || !table)
        return isOpen;
    // Nothing found where the driver looks by itself.
    std::vector<Arguments> elsewhere;
    if (queryDatabase()->hasOwners())
        elsewhere.push_back({asked[0], "%", asked[2], asked[3]});
    else if (queryDatabase()->hasQualifiers())
        for (const CString& each : qualifiersOf(table))
            elsewhere.push_back({each, asked[1], asked[2], asked[3]});
    return elsewhere.empty() ? isOpen : openCatalogue(SQL_API_SQLCOLUMNS, elsewhere, type);
}

void CColumns::DoFieldExchange(CFieldExchange& exchange)
{
    exchange.text(tableQualifier);
    exchange.text(tableOwner);
    exchange.text(tableName);
    exchange.text(columnName);
    exchange.number(dataType);
    exchange.text(typeName);
    exchange.number(precision);
    exchange.number(length);
    exchange.number(scale);
    exchange.number(radix);
    exchange.number(nullable);
    exchange.text(remarks);
}
