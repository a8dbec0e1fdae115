#pragma once

#include "Base/Text.h"

#include <vector>

struct DataSource
{
    CString name;
    CString description;
};

/// Appends the data sources of user and system that the driver manager knows. Names are cut to 49 bytes, descriptions
/// to 299. Returns false if there is no ODBC environment.
bool listDataSources(std::vector<DataSource>& out);
