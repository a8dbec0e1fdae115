#pragma once

#include <QString>

class QLabel;

// Qt takes a text with markup for rich text wherever it isn't told otherwise, and rich text opens the files that it
// names. So whatever shows text of a source, a driver, a server or a file name goes through these (scripts/check).

/// Returns a new label that shows `text` as it is.
QLabel* plainLabel(const QString& text = {});

/// Returns `text` as a tool tip that shows it as it is; long lines wrap, and what is beyond 2,000 characters is cut.
QString plainToolTip(const QString& text);

/// Returns `text` as a window's title that shows it as it is.
QString plainTitle(QString text);

/// Keeps rich text from opening files, also that of the toolkit's own dialogs. Resources of the program stay open.
void closeRichText();
