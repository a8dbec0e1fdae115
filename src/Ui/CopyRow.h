#pragma once

#include <QWidget>

class QLineEdit;

/// One line of text that can be read and selected, with a button that copies it. A long text is shown shortened in the
/// middle, and copied whole.
class CopyRow : public QWidget
{
public:
    /// `caption` says what the text is; `button` is the button's label.
    CopyRow(const QString& caption, const QString& button);

    void setText(const QString& text);

protected:
    bool eventFilter(QObject* target, QEvent* event) override;

private:
    void copy() const;

    QLineEdit* field;
    QString whole;
};
