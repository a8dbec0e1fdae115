#pragma once

#include "Base/Text.h"

/// Returns whether an error text is one that ends a literal reading because the source needs the full reading.
bool isErrorOfLiteralReading(std::string_view text);

/// Appends `words` to the list of unsupported constructs if `isUsed`.
void addUnsupported(CString& unsupported, bool isUsed, const char* words);
