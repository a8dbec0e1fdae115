#pragma once

#include "Base/Text.h"
#include "Database/Odbc.h"

#include <initializer_list>
#include <vector>

/// An SQL statement with question marks for its values, prepared once and run any number of times. The driver's process
/// keeps the prepared statement under its text until the connection closes, so equal texts share one.
class CStatement
{
public:
    using Rows = std::vector<std::vector<CString>>;

    /// Prepares the statement. The database must outlive it. Throws CDBException, as execute() does.
    CStatement(CDatabase& database, const CString& sql);

    /// Runs the statement with a text for each question mark, in order, and returns the rows of its result. Each column
    /// is a text of any length; null becomes empty. All rows are in memory. A statement without a result returns none.
    Rows execute(std::initializer_list<std::string_view> values = {});

private:
    CDatabase& database;
    const CString sql;
};
