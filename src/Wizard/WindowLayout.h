#pragma once

class QWidget;

// The sizes and positions of windows and columns that the user has chosen, stored in the settings.

/// Restores a window's position and size, if they still fit the screens.
void restoreGeometry(QWidget& window);

/// Restores the widths of columns and splitters inside `page`.
void restoreWidths(const QWidget& page);

/// Stores the layout of a window and everything in it. A failure is not reported.
void storeLayout(const QWidget& window);
