#include "Cli/Report.h"

#include <cstdio>

void report(std::string_view text)
{
    std::fprintf(stderr, "typeforge-import: %.*s\n", static_cast<int>(text.size()), text.data());
}
