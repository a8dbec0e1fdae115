#pragma once

#include "Platform/Text.h"

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

/// Shows the document of a type, indented and coloured, to read, search, copy and save. A window of its own beside the
/// wizard, which goes when it is closed or when its owner goes.
class DocumentWindow : public QWidget
{
public:
    /// `document` is a type's document, `name` the type's name. `note` says why the window came up, "" for nothing.
    DocumentWindow(QWidget* owner, const CString& name, const CString& document, const QString& note);

private:
    QHBoxLayout* makeFindRow();
    QHBoxLayout* makeButtonRow();
    void find(bool backward);
    void copy();
    void save();

    CString name;
    CString document;
    QPlainTextEdit* text;
    QLineEdit* findEdit;
    QLabel* status;
};
