#pragma once

class QWidget;

// What the user has made of the windows, kept with the settings under keys of its own.

/// Gives the window the place and size that it had, where they still fit the screens.
void restoreGeometry(QWidget& window);

/// Gives the columns of the lists inside `page`, and its splitters, the widths that they had.
void restoreWidths(const QWidget& page);

/// Stores all of that for a window and everything in it. A failure is not reported.
void storeLayout(const QWidget& window);
