#pragma once

#include "Cli/Arguments.h"

/// Runs one import and writes its result. Returns the exit status: an ExitStatus or, with --diff, that of diff(1).
/// Errors have been reported.
int runImport(Arguments arguments);
