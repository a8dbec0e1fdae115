#pragma once

#include "Base/Text.h"
#include "Ui/SideWindow.h"

#include <QTimer>

#include <optional>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

/// A window that shows the document of a type, indented and coloured, or a report as it is, to read, search, copy and
/// save. It stays open beside the wizard until it or its owner is closed, and then destroys itself. It has copies of
/// all texts, so it doesn't need the types.
class DocumentWindow : public SideWindow
{
public:
    /// The kind of text, which decides on colours, the suggested suffix and the words.
    enum Kind
    {
        ofType,
        ofReport
    };

    /// `document` and `name` are a type's, or a report's. `note` explains why the window appeared; empty for nothing.
    /// The caller shows the window. `document` is saved, not the indented text.
    DocumentWindow(QWidget* owner, const CString& name, const CString& document, const QString& note,
                   Kind kind = ofType);

private:
    QHBoxLayout* makeFindRow();
    QHBoxLayout* makeButtonRow();
    void fill(qint64 time);
    void find(bool backward);
    void copy();
    void save();

    CString name;
    CString document; // as it is saved
    Kind kind;
    QString shown;                    // the whole text of the window
    qsizetype filled = 0;             // length of the part of `shown` that is in the window
    QTimer filling;                   // active until the whole text is in the window
    std::optional<bool> wantedSearch; // direction of a search that waits for the whole text; true: backward
    QPlainTextEdit* text;
    QLineEdit* findEdit;
    QLabel* status;
};
