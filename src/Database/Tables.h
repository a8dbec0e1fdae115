#pragma once

#include "Base/Text.h"
#include "Database/Recordset.h"

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

    CString tableQualifier;
    CString tableOwner;
    CString tableName;
    CString tableType;
    CString remarks;

protected:
    void DoFieldExchange(CFieldExchange& exchange) override;
};
