#pragma once

#include "Cli/Arguments.h"

/// Runs one import and writes what was asked for. The exit status: 0, or 1 when the import or the output failed, which
/// has then been reported.
int runImport(const Arguments& arguments);
