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

void PathLabel::paintEvent(QPaintEvent*)
{
    QTextOption wrapping(Qt::AlignLeft | Qt::AlignTop);
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QPainter painter(this);
    painter.drawText(QRectF(contentsRect()), text(), wrapping);
}
