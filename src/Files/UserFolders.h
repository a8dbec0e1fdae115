#pragma once

#include "Base/Text.h"

// The folders of the user that runs the program, by the XDG base directories
// (https://specifications.freedesktop.org/basedir/latest, which ignores relative paths). Absolute; empty if the user
// has none.

CString homeFolder();     ///< $HOME as it is written if it is absolute, else the folder in the account's entry
CString settingsFolder(); ///< "typeforge" in $XDG_CONFIG_HOME or ~/.config; it may not exist yet
CString dataFolder();     ///< the same in $XDG_DATA_HOME or ~/.local/share

/// Returns the user's login name; empty if there is no account.
CString loginName();
