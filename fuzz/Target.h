#pragma once

#include <string_view>

/// What a target does with one input. Ends the program where something is wrong.
void fuzz(std::string_view input);
