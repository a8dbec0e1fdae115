#pragma once

#include <QLabel>

/// A label of one line that is elided if its text is too long, so that it does not widen the window. The tool tip then
/// shows the whole text. text() returns the whole text, which screen readers read.
class ElidedLabel : public QLabel
{
public:
    /// The text is shown as it is, without markup.
    explicit ElidedLabel(const QString& text = {});

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText() const;
};
