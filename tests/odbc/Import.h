#pragma once

#include "Formats/ODBCMsg.h"
#include "Platform/MainWindow.h"
#include "Platform/Odbc.h"

#include <cstdlib>

/// Listing data sources makes a file of the user's where there is none; the tests' own is empty.
inline const int kOdbcIniIsSet = setenv("ODBCINI", "/dev/null", 1);

/// A main window that has nothing but a connection.
struct Connected : MainWindow
{
    CDatabase database;

    explicit Connected(const CString& source, const CString& logon = {})
    {
        database.Open(source, CDatabase::readWrite, logon);
        setMainWindow(this);
    }
    ~Connected() override { setMainWindow(nullptr); }
    CDatabase* queryDatabase() override { return &database; }
};

/// What an import of `tables`, each ended by a line feed, gives: "NAME(FIELD:TYPE …)" for each record, the types as
/// "S", "N", "T" and "t" for a table, a description behind a slash.
inline CString importTables(const CString& tables)
{
    ODBCMessage message;
    message.parseData(tables, "\\");
    CString text;
    message.beginEnum();
    while (const Element* record = message.enumNext()) {
        text += record->queryName() + "(";
        for (const Element* field : record->queryChildren()) {
            text += text.ends_with('(') ? "" : " ";
            text += field->queryName() + ":" + "EARtSNTO"[field->queryType()];
            text += field->queryDescription().empty() ? "" : "/" + field->queryDescription();
        }
        text += ")";
    }
    return text;
}
