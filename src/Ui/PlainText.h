#pragma once

#include <QString>

class QLabel;

// By default Qt shows any text that looks like markup as rich text, and rich text opens the files that it names. So all
// text of a source, a driver, a server or a file name must be shown through these functions (scripts/check).

/// Returns a new label that shows `text` as it is.
QLabel* plainLabel(const QString& text = {});

/// Returns `text` as a tool tip that shows it as it is. Long lines wrap; text beyond 2,000 characters is cut.
QString plainToolTip(const QString& text);

/// Returns `text` as a window's title that shows it as it is.
QString plainTitle(QString text);

/// Keeps all rich text, also that of Qt's own dialogs, from opening files. The program's own resources stay readable.
void closeRichText();
