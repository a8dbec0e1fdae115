#pragma once

#include "Base/Text.h"

/// Returns whether a message of a literal reading may mean that the source needs the full reading: a statement of a DTD
/// that can't be parsed, or a schema without a root. Compares the words, because messages are only texts.
bool isErrorOfLiteralReading(std::string_view text);

/// Appends `words` to the list of unsupported constructs if `isUsed`; the list is separated by commas, for a sentence.
void addUnsupported(CString& unsupported, bool isUsed, const char* words);
