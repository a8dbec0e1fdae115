#pragma once

#include <string_view>

/// Runs a target on one input. Aborts if something is wrong; a sanitizer aborts, too. Each target defines it. It must
/// leave no state that changes later runs, except where the target says so.
void fuzz(std::string_view input);
