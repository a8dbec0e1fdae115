#pragma once

#include "Database/Odbc.h"

#include <initializer_list>
#include <string_view>
#include <vector>

/// The rows of a result. Each column is a text of any length; null is empty.
using SqlRows = std::vector<std::vector<CString>>;

/// Runs an SQL statement with a text for each question mark, in order, and returns the rows of its result; none if it
/// has no result. All rows are in memory. The driver's process prepares a statement at its first run and keeps it under
/// its text until the connection closes. Throws CDBException.
SqlRows runSql(CDatabase& database, const CString& sql, std::initializer_list<std::string_view> values = {});
