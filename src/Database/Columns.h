#pragma once

#include "Base/Text.h"
#include "Database/Recordset.h"
#include "Database/Tables.h"

#include <set>
#include <utility>
#include <vector>

/// The columns of tables, as a data source's catalogue lists them (SQLColumns). A pattern may match several tables;
/// queryTable() returns the table of a row.
class CColumns : public CRecordset
{
public:
    explicit CColumns(CDatabase* openOn) : CRecordset(openOn) {}

    /// Opens the list of columns. Each text is a name, or null if not given; table and column are patterns, in which
    /// "_" stands for one character and "%" for any text. Without qualifier and owner, the driver decides where to
    /// look; if it finds nothing, any owner and qualifier match. Returns 1 if open, 0 if the driver can't list columns;
    /// throws CDBException on errors. Use one object for many tables: it caches which databases have which tables.
    int Open(const char* qualifier, const char* owner, const char* table, const char* column, UINT type = snapshot);

    TableName queryTable() const { return {tableQualifier, tableOwner, tableName}; } ///< of the current row

    // The columns of the current row, in ODBC's order (SQLColumns). A null is empty or 0.
    CString tableQualifier;
    CString tableOwner;
    CString tableName;
    CString columnName;
    LONG dataType = 0; ///< ODBC's number of the SQL type
    CString typeName;
    /// Sizes as the driver reports them: precision in digits or characters, length in bytes, scale in digits after the
    /// point. The radix of a number is 10 or 2. Nullable is ODBC's SQL_NO_NULLS, SQL_NULLABLE or SQL_NULLABLE_UNKNOWN.
    LONG precision = 0;
    LONG length = 0;
    LONG scale = 0;
    LONG radix = 0;
    LONG nullable = 0;
    CString remarks;

protected:
    void DoFieldExchange(CFieldExchange& exchange) override;

private:
    // Returns the qualifiers that contain a table which `table` may match. One may be empty.
    std::set<CString> qualifiersOf(const char* table);

    int lookups = 0;                                 // calls of qualifiersOf()
    std::vector<std::pair<CString, CString>> listed; // tables and their qualifiers, a cache
};
