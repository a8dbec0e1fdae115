#pragma once

#include <QLabel>

/// A label for a text that may hold a long path: it wraps anywhere rather than widen the window.
class PathLabel : public QLabel
{
public:
    PathLabel();

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
