#pragma once

#include "Base/Text.h"

namespace CLI {
class App;
}

/// The script that completes command lines in a shell, "bash", "zsh" or "fish". All it knows of the options comes from
/// `app`: their names, what they are for, and by the names of their types what stands behind them ("FILE", or words
/// with "|" between).
CString completionFor(const CLI::App& app, const CString& shell);
