#pragma once

#include "Cli/Arguments.h"

/// Runs one import and writes what was asked for. Answers the exit status, an ExitStatus or, for --diff, that of
/// diff(1); what went wrong has been reported.
int runImport(Arguments arguments);
