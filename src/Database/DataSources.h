#pragma once

#include "Base/Text.h"

#include <vector>

struct DataSource
{
    CString name;
    CString description;
};

/// Appends the data sources of user and system that the driver manager knows, names cut to 49 bytes and descriptions to
/// 299. False when there is no ODBC environment to ask.
bool listDataSources(std::vector<DataSource>& out);
