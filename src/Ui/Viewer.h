#pragma once

#include "Base/Text.h"

#include <functional>

class QObject;

/// Opens a file in the user's viewer for its type, through `xdg-open`, or through the program in the environment
/// variable TYPEFORGE_VIEWER. Returns at once. Calls `onFailure` if the program can't be started, or fails within half
/// a minute, because xdg-open tries several viewers before it gives up. Does not call it after `context` is destroyed.
/// `onFailure` is called in the window's thread, at most once.
void showInViewer(const CString& fileName, QObject* context, std::function<void()> onFailure);
