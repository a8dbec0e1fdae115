#pragma once

#include "Base/Text.h"

#include <vector>

/// A row of the driver manager's list. unixODBC gives the driver's name as the description.
struct DataSource
{
    CString name;
    CString description;
};

/// Appends the data sources of user and system that the driver manager knows. Names are cut to 49 bytes, descriptions
/// to 299. A name that both have is returned once, and the user's entry is opened. Returns false if there is no ODBC
/// environment. Loads no driver. If the user has no odbc.ini, unixODBC creates an empty one.
bool listDataSources(std::vector<DataSource>& out);
