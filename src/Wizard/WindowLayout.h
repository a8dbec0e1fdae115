#pragma once

class QWidget;

// The sizes and positions of windows and columns that the user has chosen, stored in the settings.

/// Restores a window's position and size, if they still fit the screens. Does nothing without a stored layout. Call it
/// before the window is shown.
void restoreGeometry(QWidget& window);

/// Restores the widths of columns and splitters inside `page`. Stored widths are ignored if their number differs.
void restoreWidths(const QWidget& page);

/// Stores the layout of a window and of its lists and splitters. A failure is not reported.
void storeLayout(const QWidget& window);
