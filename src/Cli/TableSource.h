#pragma once

#include "Cli/Arguments.h"
#include "Database/MainWindow.h"
#include "Database/Odbc.h"
#include "Import/Tables/ODBCMsg.h"

#include <optional>
#include <vector>

/// Stands in for the main window while the command runs: it holds the connection that the importer of tables reads
/// from. It must be constructed before the importer and outlive it.
class TableSource : public MainWindow
{
public:
    TableSource() { setMainWindow(this); }
    ~TableSource() override { setMainWindow(nullptr); }

    CDatabase* queryDatabase() override { return &database; }

    /// Opens the data source and imports the requested tables, or all. `message` must be an ODBCMessage. Failures have
    /// been reported; throws std::runtime_error if the password can't be read, or if two tables would become one type.
    void import(MsgBase& message, const Arguments& arguments, const CString& basePath, Diagnostics& diagnostics);

private:
    // Does what import() does; throws CDBException on a database error.
    void read(ODBCMessage& message, const Arguments& arguments, const CString& basePath, Diagnostics& diagnostics);
    // Returns false if the driver manager can't even try to connect. Throws CDBException if the driver fails, and
    // std::runtime_error if the password can't be read.
    bool open(const Arguments& arguments);
    bool listTables(std::vector<ChosenTable>& tables);
    // Returns the tables that the names of --table mean, each once; not all of them need exist.
    std::vector<ChosenTable> pickTables(const std::vector<CString>& names);
    // Returns the table of a name with owner or qualifier in front, if there is one.
    std::optional<TableName> qualifiedTable(const CString& name);
    // Called after the import.
    void requireTables(MsgBase& message, const std::vector<ChosenTable>& tables, Diagnostics& diagnostics);

    CDatabase database;
};
