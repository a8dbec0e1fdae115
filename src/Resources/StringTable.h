#pragma once

#include "Resources/StringIds.h"

/// The text of `id`, a literal that lives for the whole run; "" for an id that is not in the table. A text that holds a
/// conversion (%s, %d, %u, %ld) is a format, which the caller fills. It may be called before main() and from any
/// thread. Logarithmic in the size of the table.
const char* loadText(unsigned id);
