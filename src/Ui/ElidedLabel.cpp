#include "Ui/ElidedLabel.h"

#include "Ui/PlainText.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

ElidedLabel::ElidedLabel(const QString& text)
{
    setTextFormat(Qt::PlainText);
    setText(text);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

// Returns the text as it fits the current width.
QString ElidedLabel::shownText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || shownText() == text())
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(text()), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawText(contentsRect(), static_cast<int>(alignment()), shownText());
}
