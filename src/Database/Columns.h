#pragma once

#include "Base/Text.h"
#include "Database/Recordset.h"

#include <set>
#include <utility>
#include <vector>

/// The columns of tables, as the catalogue of a data source lists them (SQLColumns).
class CColumns : public CRecordset
{
public:
    explicit CColumns(CDatabase* openOn) : CRecordset(openOn) {}

    /// Each text is a name, or null for any; table and column name are patterns, in which "_" stands for a character
    /// and "%" for any text. 1 when open, 0 when the driver can't list columns; errors are raised. For many
    /// tables use one object: in which databases a server has which tables is asked but once then.
    int Open(const char* qualifier, const char* owner, const char* table, const char* column, UINT type = snapshot);

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
