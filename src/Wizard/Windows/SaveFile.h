#pragma once

#include "Base/Text.h"
#include "Ui/FileDialog.h"

#include <functional>

/// Asks in a dialog of `owner` where to save, suggests the name `suggested` in the current folder, and writes what
/// `bytes` returns for the chosen name. Returns that name; empty if the user cancels, and after a failure, which it has
/// shown. `bytes` may throw: nothing is written then.
CString saveUnderChosenName(QWidget& owner, const CString& title, const std::vector<FileFilter>& filters,
                            CString suggested, const std::function<CString(const CString& fileName)>& bytes);
