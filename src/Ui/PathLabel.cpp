#include "Ui/PathLabel.h"

#include <QPainter>
#include <QTextOption>

PathLabel::PathLabel()
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

QSize PathLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

int PathLabel::heightForWidth(int width) const
{
    constexpr int flags = static_cast<int>(Qt::TextWordWrap) | static_cast<int>(Qt::TextWrapAnywhere);
    return fontMetrics().boundingRect(0, 0, width, QWIDGETSIZE_MAX, flags, text()).height();
}

void PathLabel::paintEvent(QPaintEvent*)
{
    QTextOption wrapping(Qt::AlignLeft | Qt::AlignTop);
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QPainter painter(this);
    painter.drawText(QRectF(contentsRect()), text(), wrapping);
}
