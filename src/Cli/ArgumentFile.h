#pragma once

#include "Base/Text.h"

#include <vector>

/// Returns the arguments of a command line without the program's name. "@FILE" is replaced by the non-empty lines of
/// that file, one argument each. Such a line is taken as it is, even if it begins with "@"; so is every argument after
/// "--". Appends the names of the files to `files`. Throws std::runtime_error if a file can't be read.
std::vector<CString> argumentsOf(int argc, char** argv, std::vector<CString>& files);
