#pragma once

#include "Platform/Text.h"

/// What a source uses that the literal readings of its kind don't know, as words for a sentence ("parameter entities,
/// comments with markup"); "" when that is nothing, or the file can't be read.
CString usesOfDtd(const CString& fileName);
CString usesOfSchema(const CString& fileName);

/// True for the text of an error that such a use is the likely cause of.
bool isErrorOfLiteralReading(std::string_view text);
