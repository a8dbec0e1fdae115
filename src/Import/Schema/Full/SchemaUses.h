#pragma once

#include "Base/Text.h"

/// What a schema uses that the literal reading doesn't know, as words for a sentence ("a target namespace, a prefix
/// other than xs"). Empty if there is nothing, or the file can't be read.
CString usesOfSchema(const CString& fileName);
