#pragma once

#include <QLabel>

/// A label for a text that may hold a long path: it wraps anywhere rather than widen the window.
class PathLabel : public QLabel
{
public:
    PathLabel();

    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override; ///< for whoever sets its size policy so

protected:
    void paintEvent(QPaintEvent* event) override;
};
