#pragma once

#include <string_view>

/// Runs a target on one input. Aborts if something is wrong.
void fuzz(std::string_view input);
