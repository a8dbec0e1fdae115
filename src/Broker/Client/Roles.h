#pragma once

#include "Base/Text.h"

#include <vector>

/// The roles of a PostgreSQL server that a broker's user may mean: first the one that is called so. The server keeps
/// letter case, and folds what isn't quoted to lower case, letters of ASCII alone; a user without a small letter may
/// have been written where all letters are turned to capitals. Any other is meant as it stands.
std::vector<CString> rolesOf(const CString& user);
