#pragma once

#include <string_view>

/// Writes one line to standard error, under the program's name. Takes no memory.
void report(std::string_view text);
