#pragma once

#include "Base/Text.h"
#include "Database/Recordset.h"

#include <compare>

/// A table, as a catalogue names it. Qualifier and owner are empty where a database has none.
struct TableName
{
    CString qualifier;
    CString owner;
    CString name;

    bool operator==(const TableName&) const = default;
    auto operator<=>(const TableName&) const = default;

    /// "OWNER.NAME", or "QUALIFIER.NAME" where a database has no owners.
    CString text() const
    {
        const CString& place = owner.empty() ? qualifier : owner;
        return place.empty() ? name : place + "." + name;
    }
};

/// The tables of a data source, as its catalogue lists them (SQLTables).
class CTables : public CRecordset
{
public:
    explicit CTables(CDatabase* openOn) : CRecordset(openOn) {}

    /// Each text is a pattern, or null for any; `tableType` a list of quoted types. 1 when open, 0 when the driver
    /// can't list tables; errors are raised.
    int Open(const char* qualifier, const char* owner, const char* table, const char* tableTypes, UINT type = snapshot);

    /// The recordset is always made on an open connection, so there is none to name.
    CString GetDefaultConnect() const { return {}; }

    TableName queryName() const { return {tableQualifier, tableOwner, tableName}; } ///< of the current row

    CString tableQualifier;
    CString tableOwner;
    CString tableName;
    CString tableType;
    CString remarks;

protected:
    void DoFieldExchange(CFieldExchange& exchange) override;
};
