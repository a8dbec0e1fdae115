#include "Platform/Ui/HeaderBand.h"

#include "Platform/Ui/Pictures.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int kMargin = 12;

} // namespace

HeaderBand::HeaderBand(int headerId, QWidget* parent) :
    QWidget(parent), pictureId(headerId), header(picture(headerId, palette())), titleLabel(new QLabel(this)),
    subtitleLabel(new QLabel(this))
{
    QFont bold = font();
    bold.setBold(true);
    titleLabel->setFont(bold);
    titleLabel->setTextFormat(Qt::PlainText);
    subtitleLabel->setTextFormat(Qt::PlainText);
    subtitleLabel->setWordWrap(true);
    subtitleLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void HeaderBand::addSubtitle(const QString& subtitle)
{
    subtitles.append(subtitle);
}

void HeaderBand::setTexts(const QString& title, const QString& subtitle)
{
    titleLabel->setText(title);
    subtitleLabel->setText(subtitle);
    layOut();
}

// The right end, about as wide as the band is high, is left to the picture's motif.
void HeaderBand::layOut()
{
    const int titleHeight = titleLabel->fontMetrics().height();
    const int indent = kMargin + fontMetrics().averageCharWidth() * 2;
    const int textWidth = std::max(width() - indent - titleHeight * 9, 80);
    int textHeight = 0;
    for (const QString& subtitle : subtitles) {
        const QRect needed = fontMetrics().boundingRect(0, 0, textWidth, 10000, Qt::TextWordWrap, subtitle);
        textHeight = std::max(textHeight, needed.height());
    }
    titleLabel->setGeometry(kMargin, kMargin, textWidth + indent - kMargin, titleHeight);
    subtitleLabel->setGeometry(indent, kMargin + titleHeight + 2, textWidth, textHeight + 2);
    setFixedHeight(kMargin + titleHeight + 2 + textHeight + 2 + kMargin);
}

void HeaderBand::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintHeader(painter, rect(), header);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(rect().bottomLeft(), rect().bottomRight());
}

void HeaderBand::resizeEvent(QResizeEvent*)
{
    layOut();
}

void HeaderBand::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange)
        layOut();
    if (event->type() == QEvent::PaletteChange)
        header = picture(pictureId, palette());
    QWidget::changeEvent(event);
}
