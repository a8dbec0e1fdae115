#pragma once

#include "Database/MainWindow.h"
#include "Database/Odbc.h"
#include "Import/Tables/ODBCMsg.h"

#include <cstdlib>

/// Listing data sources makes a file of the user's where there is none; the tests' own is empty.
inline const int kOdbcIniIsSet = setenv("ODBCINI", "/dev/null", 1);

/// A main window that has nothing but a connection.
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

/// What an import of `tables`, each ended by a line feed, gives: "NAME(FIELD:TYPE …)" for each record, the types as
/// "S", "N", "T" and "t" for a table, each with the description right behind it.
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
