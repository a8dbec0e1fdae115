#pragma once

#include "Import/MsgBase.h"

#include <optional>

class CColumns;
class MainWindow;

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
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    CString queryMainTypeName() const override { return "ODBC"; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

private:
    bool isGone(const CString& tableName) const;
    void createFromTable(CColumns& columns, const CString& tableName, const CString& basePath);

    MainWindow* mainWindow; // of the moment in which the importer was made
};

/// What a column of the SQL type with ODBC's code `dataType` becomes; nothing when it is left out.
std::optional<Element::ElementTypes> elementTypeOf(LONG dataType);
