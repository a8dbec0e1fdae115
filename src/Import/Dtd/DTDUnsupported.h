#pragma once

#include "Base/Text.h"

/// Returns what a DTD uses that the literal reading doesn't support, in words for a sentence ("parameter entities,
/// comments with markup"). Empty if there is nothing, or if the file can't be read.
CString unsupportedInDtd(const CString& fileName);
