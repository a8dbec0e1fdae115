#pragma once

#include "Base/Text.h"

#include <vector>

/// Returns the PostgreSQL roles that a broker user may mean, the exact name first. The server keeps the case of quoted
/// role names and folds unquoted ones to lower case, ASCII letters only. The wizard converts user names to upper case,
/// so the lower-case forms of a name without lower-case letters follow. Any other name is only tried as it is. A logon
/// is tried with each in turn, because only the server knows which of them exists.
std::vector<CString> rolesOf(const CString& user);
