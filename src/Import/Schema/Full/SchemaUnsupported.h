#pragma once

#include "Base/Text.h"

/// Returns what a schema uses that the literal reading doesn't support, in words for a sentence ("a target namespace, a
/// prefix other than xs"). Empty if there is nothing, or if the file can't be read.
CString unsupportedInSchema(const CString& fileName);
