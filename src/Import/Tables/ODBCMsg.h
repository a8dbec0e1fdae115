#pragma once

#include "Database/Tables.h"
#include "Import/MsgBase.h"

#include <optional>
#include <set>
#include <vector>

class CColumns;
class MainWindow;

/// A table that is to be imported.
struct ChosenTable
{
    TableName table;
    enum How
    {
        byName, ///< any table will do that its name matches as a pattern; owner and qualifier aren't known
        listed, ///< the same, but the catalogue lists it as this one
        exact   ///< no other table's columns are read
    } how = byName;

    /// Whether the source of an import, a list of lines whose ends are trimmed, can name it.
    bool isNamable() const;
};

/// The importer of table definitions. Each table becomes a record, its columns fields; columns of a type that is
/// neither text nor number nor time are left out.
class ODBCMessage : public MsgBase
{
public:
    ODBCMessage();

    static MsgBase* New() { return new ODBCMessage; }

    /// `source` holds table names, each ended by a line feed, up to the first empty one; they are read from the main
    /// window's open connection. Always 1; an error of the database is raised as CDBException. A table name is a
    /// pattern to the data source, and the columns of all tables that match it go into the one record.
    ///
    /// A record into which the columns of several tables go is a loss.
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    /// Says which tables the names in the source of an import stand for, from now on. A table that can't be named
    /// there, or instead of which another one of its name is read, is a loss of the import.
    void setChosen(std::vector<ChosenTable> tables);

    CString queryMainTypeName() const override { return "ODBC"; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

private:
    void createFromTable(CColumns& columns, const CString& tableName, const CString& basePath);
    const TableName* exactTable(const CString& tableName) const;
    bool isThere(const CString& tableName) const;
    void reportTables(const CString& tableName, const std::set<TableName>& read);
    void reportUnnamed();

    std::vector<ChosenTable> chosen;
    MainWindow* mainWindow; // of the moment in which the importer was made
};

/// What a column of the SQL type with ODBC's code `dataType` becomes; nothing when it is left out.
std::optional<Element::ElementTypes> elementTypeOf(LONG dataType);
