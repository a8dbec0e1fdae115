#include "Platform/Database/Tables.h"

#include <sql.h>
#include <sqlext.h>

int CTables::Open(const char* qualifier, const char* owner, const char* table, const char* tableTypes, UINT type)
{
    return openCatalogue({SQL_API_SQLTABLES, "SQLTables", SQLTables},
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
