#pragma once

#include "Base/Text.h"
#include "Ui/FileDialog.h"

#include <functional>

/// Asks in a dialog of `owner` where to save, `suggested` being offered in the current folder, and writes there what
/// `bytes` answers for the chosen name. Answers that name; "" when the user cancels and after a failure, which has been
/// shown.
CString saveUnderChosenName(QWidget& owner, const CString& title, const std::vector<FileFilter>& filters,
                            CString suggested, const std::function<CString(const CString& fileName)>& bytes);
