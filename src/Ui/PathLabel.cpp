#include "Ui/PathLabel.h"

#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

#include <cmath>

namespace {

QTextOption wrapping()
{
    QTextOption option(Qt::AlignLeft | Qt::AlignTop);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

} // namespace

PathLabel::PathLabel()
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true); // without it, each new text resets the size policy's height for width
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

QSize PathLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

// Breaks lines as drawText() does. QLabel's height would be that of its own line breaks.
int PathLabel::heightForWidth(int width) const
{
    QTextLayout lines(text().replace('\n', QChar::LineSeparator), font());
    lines.setTextOption(wrapping());
    lines.beginLayout();
    qreal height = 0;
    for (QTextLine line = lines.createLine(); line.isValid(); line = lines.createLine()) {
        line.setLineWidth(width);
        height += line.height();
    }
    lines.endLayout();
    return static_cast<int>(std::ceil(height));
}

void PathLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawText(QRectF(contentsRect()), text(), wrapping());
}
