#include "Database/Tables.h"

#include <sql.h>
#include <sqlext.h>

// A name without an owner is one of the search path to PostgreSQL's driver; without a name, null is any owner to it.
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
