#pragma once

#include "Base/Text.h"

/// Returns a type's document with each tag on a line of its own, indented. Such documents contain no text, and no '<'
/// or '>' in values. Each level is indented by two blanks; the last line has no line feed.
CString indentedDocument(std::string_view document);
