#pragma once

#include "Base/Text.h"

/// Whether the text of an error is one that a literal reading ends with when its source needs the full reading.
bool isErrorOfLiteralReading(std::string_view text);

/// Appends `words` to a list of what a source uses, if `isUsed`.
void addUse(CString& uses, bool isUsed, const char* words);
