#pragma once

#include "Base/Text.h"
#include "Database/Recordset.h"
#include "Database/Tables.h"

#include <set>
#include <utility>
#include <vector>

/// The columns of tables, as the catalogue of a data source lists them (SQLColumns).
class CColumns : public CRecordset
{
public:
    explicit CColumns(CDatabase* openOn) : CRecordset(openOn) {}

    /// Each text is a name, or null if it isn't given; table and column name are patterns, in which "_" stands for a
    /// character and "%" for any text. Without qualifier and owner the driver decides where it looks; if it finds
    /// nothing there, the columns of any owner and qualifier are listed. 1 when open, 0 when the driver can't list
    /// columns; errors are raised. For many tables use one object: it remembers in which databases a server has which
    /// tables.
    int Open(const char* qualifier, const char* owner, const char* table, const char* column, UINT type = snapshot);

    TableName queryTable() const { return {tableQualifier, tableOwner, tableName}; } ///< of the current row

    CString tableQualifier;
    CString tableOwner;
    CString tableName;
    CString columnName;
    LONG dataType = 0; ///< ODBC's code of the SQL type
    CString typeName;
    LONG precision = 0;
    LONG length = 0;
    LONG scale = 0;
    LONG radix = 0;
    LONG nullable = 0;
    CString remarks;

protected:
    void DoFieldExchange(CFieldExchange& exchange) override;

private:
    std::set<CString> qualifiersOf(const char* table);

    int askedTables = 0;
    std::vector<std::pair<CString, CString>> listed; // tables and their qualifiers
};
