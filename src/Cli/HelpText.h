#pragma once

#include "Base/Text.h"

namespace CLI {
class App;
}

/// Returns the text of --help: options in groups, wrapped to 80 columns. The groups and their order are those of the
/// manual page.
CString helpText(const CLI::App& app);
