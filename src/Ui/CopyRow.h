#pragma once

#include <QWidget>

class QLineEdit;

/// A line of read-only text with a button that copies it. A long text is elided in the middle, but copied whole.
class CopyRow : public QWidget
{
public:
    /// `caption` names the text; `button` is the button's label.
    CopyRow(const QString& caption, const QString& button);

    /// Shows another text, from its start on.
    void setText(const QString& text);

protected:
    bool eventFilter(QObject* target, QEvent* event) override;

private:
    void copy() const;

    QLineEdit* field;
    QString whole; // the text; the field may show less of it
};
