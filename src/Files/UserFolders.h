#pragma once

#include "Base/Text.h"

// The folders of the user that runs the program, by the XDG base directories
// (https://specifications.freedesktop.org/basedir/latest: a relative path counts as unset). Absolute, without a slash
// at the end; "" where the user has none.

CString homeFolder();
CString settingsFolder(); ///< $XDG_CONFIG_HOME or ~/.config, and in it "typeforge"; it may not be there yet
CString dataFolder();     ///< the same for $XDG_DATA_HOME or ~/.local/share

/// The name that the user logs on with; "" where the user has no account.
CString loginName();
