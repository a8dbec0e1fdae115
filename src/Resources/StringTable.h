#pragma once

#include "Resources/StringIds.h"

/// Returns the text of `id`, a literal; "" for an id that is not in the table. A text with a conversion (%s, %d, %u,
/// %ld) is a format, which the caller fills. May be called before main() and in any thread.
const char* loadText(unsigned id);
