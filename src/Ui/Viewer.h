#pragma once

#include "Base/Text.h"

#include <functional>

class QObject;

/// Opens a file in what the user views its kind with, through `xdg-open`, or through the program that the environment
/// variable TYPEFORGE_VIEWER names. Doesn't wait. `whenNoneStarts` is called where the program can't be started, or
/// ends with a failure within half a minute: xdg-open tries one viewer after the other before it gives up. It is not
/// called once `context` is gone.
void showInViewer(const CString& fileName, QObject* context, std::function<void()> whenNoneStarts);
