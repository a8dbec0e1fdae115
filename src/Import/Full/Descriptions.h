#pragma once

#include "Base/Text.h"

/// Appends `text` to a description with each run of white space as one space, until the description is long enough for
/// shortDescription().
void appendCollapsed(CString& out, std::string_view text);

/// Returns the description of a type: the first 255 characters of a text collected by appendCollapsed(), trimmed.
std::string_view shortDescription(std::string_view collapsed);
