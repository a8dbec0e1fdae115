#pragma once

#include "Base/Text.h"

/// Appends `text` to a description with each run of white space as one space, as long as there is room for it.
void appendCollapsed(CString& out, std::string_view text);

/// What a type carries of a description that was collected so: its first 255 characters, trimmed.
std::string_view shortDescription(std::string_view collapsed);
