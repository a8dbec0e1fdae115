#pragma once

#include "Base/Text.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

// Statements in the driver's process. Both functions append all rows to `out` and throw CDBException.

/// The texts for a catalogue function; one that is not given is null.
using CatalogueArguments = std::array<std::optional<CString>, 4>;

/// Runs SQLTables or SQLColumns, given by its SQL_API number. The rows have the columns of `shape`, which
/// CFieldExchange::shape() returns, and are packed as CFieldExchange::load() reads them. `statement` is a handle that
/// can be used again.
void runCatalogue(void* statement, unsigned short function, std::string_view shape, CatalogueArguments arguments,
                  CString& out);

/// Runs a prepared statement with a text for each question mark. The rows follow the number of their columns, if there
/// are any, each value as a text of any length; null becomes empty. Nothing follows if the statement has no result.
void runStatement(void* statement, std::vector<CString> values, CString& out);
