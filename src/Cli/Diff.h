#pragma once

#include "Cli/Diagnostics.h"

class MsgBase;
class Output;

/// Compares the types of an import with those of a document that was written earlier, and writes the differences, a
/// line each, or as one JSON object. The exit status is that of diff(1): 0 the same, 1 different, 2 trouble, which has
/// then been reported.
int diffTypes(MsgBase& message, const CString& document, bool asJson, Output& output, Diagnostics& diagnostics);
