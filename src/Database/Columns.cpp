#include "Database/Columns.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>

namespace {

// So many tables are asked for by themselves: a list of all takes a server longer than a few of these.
constexpr int kSingleTables = 12;

constexpr char kAny = '\x80';

// A name in which each character that a database may compare by rules of its own is `kAny`: those that aren't ASCII.
CString comparable(std::string_view name)
{
    CString text;
    for (const char c : name)
        if ((c & 0xC0) != 0x80) // not within a character
            text += c & 0x80 ? kAny : lowerAscii(c);
    return text;
}

// Whether the database may take a name for one that matches the pattern. It goes by single characters, as LIKE does.
bool mayMatch(std::string_view pattern, std::string_view name)
{
    return pattern.find_first_of("%\\") != pattern.npos || std::ranges::equal(pattern, name, [](char a, char b) {
               return a == b || a == '_' || a == kAny || b == kAny;
           });
}

// The tables that match the pattern, or all, with their qualifiers.
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
    const bool isSingle = askedTables++ < kSingleTables;
    if (isSingle || askedTables == kSingleTables + 1)
        listed = listTables(queryDatabase(), isSingle ? table : nullptr);
    std::set<CString> qualifiers;
    const CString pattern = comparable(table);
    for (const auto& [name, qualifier] : listed)
        if (isSingle || mayMatch(pattern, name))
            qualifiers.insert(qualifier);
    return qualifiers;
}

// To some drivers null isn't any: PostgreSQL's looks in the schemas of the search path, unless a pattern asks for all;
// MariaDB's, which has databases as qualifiers and no owners, in the current one, and takes no pattern.
int CColumns::Open(const char* qualifier, const char* owner, const char* table, const char* column, UINT type)
{
    const Arguments asked = {argument(qualifier), argument(owner), argument(table), argument(column)};
    const int isOpen = openCatalogue(SQL_API_SQLCOLUMNS, {asked}, type);
    if (!isOpen || !IsEOF() || qualifier || owner || !table)
        return isOpen;
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
