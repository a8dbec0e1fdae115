#pragma once

#include "Cli/Arguments.h"
#include "Database/MainWindow.h"
#include "Database/Odbc.h"
#include "Import/Tables/ODBCMsg.h"

#include <optional>
#include <vector>

/// The command line's stand-in for the main window, in force as long as it lives: it holds the connection that the
/// importer of tables reads from. It has to be there before the importer.
class TableSource : public MainWindow
{
public:
    TableSource() { setMainWindow(this); }
    ~TableSource() override { setMainWindow(nullptr); }

    CDatabase* queryDatabase() override { return &database; }

    /// Opens the data source and imports the tables that were asked for. What fails of it is said; a password that
    /// can't be read is raised.
    void import(MsgBase& message, const Arguments& arguments, const CString& basePath, Diagnostics& diagnostics);

private:
    void read(ODBCMessage& message, const Arguments& arguments, const CString& basePath);
    bool open(const Arguments& arguments);
    bool listTables(std::vector<ChosenTable>& tables);
    std::vector<ChosenTable> pickTables(const std::vector<CString>& names);
    std::optional<TableName> qualifiedTable(const CString& name);
    bool isThere(const CString& name);
    void requireTables(MsgBase& message, const std::vector<ChosenTable>& tables);

    CDatabase database;
};
