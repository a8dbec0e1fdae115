#pragma once

#include "Base/Text.h"

namespace CLI {
class App;
}

/// Returns the completion script for a shell: "bash", "zsh" or "fish". Options come from `app`: their names, their
/// descriptions, and their values by the names of their types ("FILE", or a choice of words separated by "|"). So an
/// option needs no entry here, but its type's name has to follow this form. `app` must have all its options.
CString completionFor(const CLI::App& app, const CString& shell);
