#include "Platform/Database/Columns.h"

#include <sql.h>
#include <sqlext.h>

int CColumns::Open(const char* qualifier, const char* owner, const char* table, const char* column, UINT type)
{
    return openCatalogue({SQL_API_SQLCOLUMNS, "SQLColumns", SQLColumns}, {qualifier, owner, table, column}, type);
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
