#pragma once

#include "Database/Tables.h"
#include "Import/MsgBase.h"

#include <optional>
#include <set>
#include <vector>

class CColumns;
class MainWindow;

/// A table to import. The catalogue may list several of one name, in different schemas or databases.
struct ChosenTable
{
    TableName table;
    enum How
    {
        byName, ///< given by name: all tables match that the name matches as a pattern
        listed, ///< the same, but the catalogue lists this table
        exact   ///< read the columns of this table only
    } how = byName;

    /// Returns whether the name can be a line of ODBCMessage::parse()'s source, which trims spaces and ends at line
    /// feeds.
    bool isNamable() const;
};

/// The importer of table definitions. Each table becomes a record, its columns become fields. Columns that are neither
/// text nor number nor time are left out.
class ODBCMessage : public MsgBase
{
public:
    /// Uses the connection of the current main window.
    ODBCMessage();

    /// Returns a new importer, owned by the caller; the factory of the table of importers.
    static MsgBase* New() { return new ODBCMessage; }

    /// `source` holds table names, each ended by a line feed, up to the first empty one. The tables are read through
    /// the main window's connection. Returns 1; throws CDBException on a database error. The data source takes a name
    /// as a pattern, so the columns of all matching tables go into one record. If several match, that is reported as a
    /// loss. In the report, each table is a file without lines.
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    /// Sets the tables that the names stand for in further imports. A table is a loss if its name can't be a line of
    /// the source, or if another table of the same name is read instead.
    void setChosen(std::vector<ChosenTable> tables);

    /// The tables have no root, so the document's main element has a fixed name.
    CString queryMainTypeName() const override { return "ODBC"; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

private:
    void createFromTable(CColumns& columns, const CString& tableName, const CString& basePath);
    void reportEmpty(const CString& tableName, SourcePlace place);
    void reportName(const CString& name, SourcePlace place);
    void reportCuts(const CColumns& columns, SourcePlace place);
    void reportGenerated(const Element& record, const std::set<TableName>& read, SourcePlace place);
    void reportSameKey(const TypeModel::Declared& made, const CString& name, SourcePlace place);
    const TableName* exactTable(const CString& tableName) const;
    void reportTables(const CString& tableName, SourcePlace place, const std::set<TableName>& read);
    void reportUnnamed();

    std::vector<ChosenTable> chosen; // sorted by name
    MainWindow* mainWindow;          // set at construction
};

/// Returns the kind of field for a column with this ODBC data type; nothing if such columns are left out.
std::optional<Element::ElementTypes> elementTypeOf(LONG dataType);
