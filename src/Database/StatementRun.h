#pragma once

#include "Base/Text.h"

#include <vector>

/// Runs a prepared statement with texts in place of its question marks, in the process of the driver. Appends the
/// number of the result's columns to `out` (if there are any), then each value of its rows as a text, however long; a
/// null is empty. Raises CDBException.
void runStatement(void* statement, std::vector<CString> values, CString& out);
