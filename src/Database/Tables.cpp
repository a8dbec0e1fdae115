#include "Database/Tables.h"

#include <sql.h>
#include <sqlext.h>

// PostgreSQL's driver looks for a name without an owner only in the search path, so "%" asks for any owner. Without a
// name, null already means any owner.
int CTables::Open(const char* qualifier, const char* owner, const char* table, const char* tableTypes, UINT type)
{
    const CDatabase* const database = queryDatabase();
    if (table && !owner && database && database->hasOwners())
        owner = "%";
    return openCatalogue(SQL_API_SQLTABLES,
                         {{argument(qualifier), argument(owner), argument(table), argument(tableTypes)}}, type);
}

void CTables::DoFieldExchange(CFieldExchange& exchange)
{
    exchange.text(tableQualifier);
    exchange.text(tableOwner);
    exchange.text(tableName);
    exchange.text(tableType);
    exchange.text(remarks);
}
