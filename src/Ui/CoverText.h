#pragma once

#include "Base/Text.h"

#include <QLabel>

/// The large text of a page on the watermark. It wraps, and starts at the top.
QLabel* coverText(const CString& text, const QFont& font);

/// Whether a label was made by coverText().
bool isCoverText(const QLabel& label);

/// `family` at a line height of `height` units of 1/96 inch; the system's font in that height when it isn't installed.
QFont coverFont(const CString& family, int height);
