#include "Platform/Database/Columns.h"

#include "Platform/Database/Tables.h"

#include <sql.h>
#include <sqlext.h>

#include <set>

namespace {

// The qualifiers in which the database has a table of that name.
std::set<CString> qualifiersOf(CDatabase* database, const char* table)
{
    std::set<CString> qualifiers;
    CTables tables(database);
    tables.Open(nullptr, nullptr, table, nullptr);
    for (tables.MoveFirst(); !tables.IsEOF(); tables.MoveNext())
        qualifiers.insert(tables.tableQualifier);
    return qualifiers;
}

} // namespace

// To some drivers null isn't any: PostgreSQL's looks in the schemas of the search path, unless a pattern asks for all;
// MariaDB's, which has databases as qualifiers and no owners, in the current one, and takes no pattern.
int CColumns::Open(const char* qualifier, const char* owner, const char* table, const char* column, UINT type)
{
    CDatabase* const database = queryDatabase();
    const bool hasOwners = database && database->queryInfo(SQL_OWNER_USAGE) != 0;
    const bool hasQualifiersAlone = database && !hasOwners && database->queryInfo(SQL_QUALIFIER_USAGE) != 0;
    std::vector<Arguments> calls;
    if (!qualifier && hasQualifiersAlone)
        for (const CString& each : qualifiersOf(database, table))
            calls.push_back({each, argument(owner), argument(table), argument(column)});
    else
        calls.push_back(
            {argument(qualifier), argument(owner || !hasOwners ? owner : "%"), argument(table), argument(column)});
    return openCatalogue({SQL_API_SQLCOLUMNS, "SQLColumns", SQLColumns}, std::move(calls), type);
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
