#pragma once

#include "Database/MainWindow.h"
#include "Database/Odbc.h"
#include "Import/Tables/ODBCMsg.h"

#include <cstdlib>

/// Listing data sources would create a file in the user's home if there is none. The tests use an empty one.
inline const int kOdbcIniIsSet = setenv("ODBCINI", "/dev/null", 1);

/// A main window that only has a connection, which is where importers of tables look for theirs. It is the main window
/// as long as it lives.
struct Connected : MainWindow
{
    explicit Connected(const CString& source, const CString& logon = {})
    {
        database.Open(source, CDatabase::readWrite, logon);
        setMainWindow(this);
    }
    ~Connected() override { setMainWindow(nullptr); }
    CDatabase* queryDatabase() override { return &database; }

    CDatabase database;
};

/// Returns the result of importing `tables`, each ended by a line feed: "NAME(FIELD:TYPE ...)" for each record. Types
/// are "S", "N", "T", or "t" for a table, each followed by the description.
inline CString importTables(const CString& tables)
{
    ODBCMessage message;
    message.parseData(tables, "\\");
    CString text;
    message.beginEnum();
    while (const Element* record = message.enumNext()) {
        CString fields;
        for (const Element* field : record->queryChildren())
            fields += " " + field->queryName() + ":" + "EARtSNTO"[field->queryType()] + field->queryDescription();
        text += record->queryName() + "(" + (fields.empty() ? "" : fields.substr(1)) + ")";
    }
    return text;
}
