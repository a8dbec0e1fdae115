#pragma once

#include <QWidget>

class QLineEdit;

/// One line of text that can be read and selected, with a button that copies it.
class CopyRow : public QWidget
{
public:
    /// `caption` says what the text is; `button` is the button's label.
    CopyRow(const QString& caption, const QString& button);

    void setText(const QString& text);

private:
    QLineEdit* field;
};
