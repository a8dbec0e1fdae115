#pragma once

#include "Base/Text.h"

/// Appends `text` to a description with each run of white space as one space, until the description is long enough for
/// shortDescription(). Call it for each piece of a text. Blanks at the start are dropped; one at the end may stay.
void appendCollapsed(CString& out, std::string_view text);

/// Returns the description of a type: the first 255 UTF-8 characters of a text collected by appendCollapsed(), trimmed.
/// The result is a view of `collapsed`.
std::string_view shortDescription(std::string_view collapsed);
