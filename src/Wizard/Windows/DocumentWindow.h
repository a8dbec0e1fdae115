#pragma once

#include "Base/Text.h"

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

/// Shows the document of a type, indented and coloured, or a report as it is, to read, search, copy and save. A window
/// of its own beside the wizard, which goes when it is closed or when its owner goes.
class DocumentWindow : public QWidget
{
public:
    enum Kind
    {
        ofType,
        ofReport
    };

    /// `document` is a type's document, `name` the type's name, or those of a report. `note` says why the window came
    /// up, "" for nothing.
    DocumentWindow(QWidget* owner, const CString& name, const CString& document, const QString& note,
                   Kind kind = ofType);

private:
    QHBoxLayout* makeFindRow();
    QHBoxLayout* makeButtonRow();
    void find(bool backward);
    void copy();
    void save();

    CString name;
    CString document;
    Kind kind;
    QPlainTextEdit* text;
    QLineEdit* findEdit;
    QLabel* status;
};
