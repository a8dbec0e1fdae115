#pragma once

#include <QLabel>

/// A label for a text with a long path. It wraps anywhere, so that it does not widen the window. QLabel breaks lines
/// only at word boundaries, which a path has few of.
class PathLabel : public QLabel
{
public:
    PathLabel();

    /// One line, of any width.
    QSize minimumSizeHint() const override;
    /// Returns the height of the whole text at a width.
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
