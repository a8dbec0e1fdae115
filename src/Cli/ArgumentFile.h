#pragma once

#include "Base/Text.h"

#include <vector>

/// The arguments of a command line, without the program's name. "@FILE" stands for the lines of that file, an argument
/// each, empty ones left out; an argument of the file itself, or behind "--", that begins with "@" is taken as it is.
/// Throws std::runtime_error if a file can't be read.
std::vector<CString> argumentsOf(int argc, char** argv);
