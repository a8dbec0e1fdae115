#pragma once

#include "Base/Text.h"
#include "Database/Recordset.h"

#include <compare>

/// A table's full name in a catalogue. Qualifier and owner are empty if the database has none. Ordered, so that tables
/// can be keys.
struct TableName
{
    CString qualifier;
    CString owner;
    CString name;

    bool operator==(const TableName&) const = default;
    auto operator<=>(const TableName&) const = default; // NOLINT(modernize-use-nullptr): a false positive in version 14

    /// Returns "OWNER.NAME", or "QUALIFIER.NAME" if there is no owner, or the bare name.
    CString text() const
    {
        const CString& place = owner.empty() ? qualifier : owner;
        return place.empty() ? name : place + "." + name;
    }
};

/// The tables of a data source, as its catalogue lists them (SQLTables). Views and system tables are listed, too,
/// unless `tableTypes` leaves them out.
class CTables : public CRecordset
{
public:
    explicit CTables(CDatabase* openOn) : CRecordset(openOn) {}

    /// Opens the list of tables. Each text is a pattern, or null for any; `tableTypes` is a list of types in quotes.
    /// Returns 1 if open, 0 if the driver can't list tables; throws CDBException on errors.
    int Open(const char* qualifier, const char* owner, const char* table, const char* tableTypes, UINT type = snapshot);

    /// Opens the list of tables, views and the like whose names match the pattern. Returns whether there are any; true
    /// if the driver can't list tables.
    bool mayContain(const CString& table) { return !Open(nullptr, nullptr, table.c_str(), nullptr) || !IsEOF(); }

    /// Returns an empty text: the connection is always given to the constructor.
    CString GetDefaultConnect() const { return {}; }

    TableName queryName() const { return {tableQualifier, tableOwner, tableName}; } ///< of the current row

    // The current row, in ODBC's order (SQLTables). A null is empty.
    CString tableQualifier;
    CString tableOwner;
    CString tableName;
    /// As the database names it: TABLE, VIEW, SYSTEM TABLE and others.
    CString tableType;
    CString remarks;

protected:
    void DoFieldExchange(CFieldExchange& exchange) override;
};
