#pragma once

#include "Base/Text.h"

#include <vector>

/// Runs a prepared statement with a text for each question mark. Appends the number of result columns to `out`, if
/// there are any, then each value of its rows as a text of any length; null becomes empty. Throws CDBException. Runs in
/// the driver's process.
void runStatement(void* statement, std::vector<CString> values, CString& out);
