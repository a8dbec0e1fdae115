#pragma once

#include "Base/Text.h"

/// Returns whether an error text is one that ends a literal reading because the source needs the full reading.
bool isErrorOfLiteralReading(std::string_view text);

/// Appends `words` to a list of used constructs if `isUsed`.
void addUse(CString& uses, bool isUsed, const char* words);
