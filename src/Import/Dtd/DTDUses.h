#pragma once

#include "Base/Text.h"

/// What a DTD uses that the literal reading doesn't know, as words for a sentence ("parameter entities, comments with
/// markup"). Empty if there is nothing, or the file can't be read.
CString usesOfDtd(const CString& fileName);
