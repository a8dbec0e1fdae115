#pragma once

#include <QLabel>

/// A label of one line that ends in dots where its text is too long, rather than widen the window. The tool tip is the
/// whole text then.
class ElidedLabel : public QLabel
{
public:
    explicit ElidedLabel(const QString& text = {});

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText() const;
};
