#pragma once

#include "Base/Text.h"

#include <QLabel>

/// Returns a new label with the large text of a cover page, for the caller to put into a layout. It wraps, and starts
/// at the top.
QLabel* coverText(const CString& text, const QFont& font);

/// Returns whether a label was made by coverText(). Such texts lie on the watermark.
bool isCoverText(const QLabel& label);

/// Returns the font `family` at a line height of `height` units of 1/96 inch; the system's font at that height if it is
/// not installed.
QFont coverFont(const CString& family, int height);
