#include "Ui/HeaderBand.h"

#include "Ui/Pictures.h"
#include "Ui/PlainText.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>

#include <algorithm>

// Text and drawing share the band. Its height fits the longest of all subtitles, so that it is the same on every page,
// and the drawing is as high as the band. So a narrower window makes a higher band with a larger drawing, which leaves
// less room for the text.
namespace {

// In pixels, around the texts.
constexpr int kMargin = 12;

} // namespace

HeaderBand::HeaderBand(int headerId, QWidget* parent) :
    QWidget(parent), pictureId(headerId), header(picture(headerId, palette())), titleLabel(plainLabel()),
    subtitleLabel(plainLabel())
{
    QFont bold = font();
    bold.setBold(true);
    titleLabel->setFont(bold);
    for (QLabel* label : {titleLabel, subtitleLabel}) {
        label->setParent(this);
        label->setForegroundRole(QPalette::Text); // the band's background is Base, not Window
    }
    subtitleLabel->setWordWrap(true);
    subtitleLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

// The subtitle is indented by two letters against the title.
int HeaderBand::indent() const
{
    return kMargin + fontMetrics().averageCharWidth() * 2;
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

// Returns the width of the subtitle. The right end is reserved for the drawing, which is about as wide as the band is
// high. If large letters in a narrow window make the band higher than that, the text covers the drawing.
int HeaderBand::textWidth(int width, int height) const
{
    return width - indent() - std::min(height * 21 / 20, width * 3 / 10);
}

int HeaderBand::heightAt(int width) const
{
    int height = 0;
    for (int pass = 0; pass < 3; ++pass) { // a higher band has a wider drawing, so the text may need more lines
        int lines = 0;
        for (const QString& subtitle : subtitles)
            lines = std::max(
                lines,
                fontMetrics().boundingRect(0, 0, textWidth(width, height), 10000, Qt::TextWordWrap, subtitle).height());
        height = titleLabel->sizeHint().height() + lines + 2 * kMargin;
    }
    return height;
}

// Places the texts by hand: the room for the drawing depends on the height, and the height on the room for the text.
void HeaderBand::layOut()
{
    const int bandWidth = parentWidget()->width(); // valid even while the band is hidden
    const int height = heightAt(bandWidth);
    const int titleHeight = titleLabel->sizeHint().height();
    const int wide = textWidth(bandWidth, height);
    titleLabel->setGeometry(kMargin, kMargin, wide + indent() - kMargin, titleHeight);
    subtitleLabel->setGeometry(indent(), kMargin + titleHeight, wide, height - titleHeight - 2 * kMargin);
    setFixedHeight(height);
}

void HeaderBand::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintHeader(painter, rect(), header);
    paintFade(painter);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(rect().bottomLeft(), rect().bottomRight());
}

// Dims the drawing below the text, so that the text stays readable. There is nothing to dim if the drawing, as wide as
// the band is high, begins right of the text.
void HeaderBand::paintFade(QPainter& painter) const
{
    const int edge = indent() + textWidth(width(), height());
    if (width() - edge >= height())
        return;
    QLinearGradient fade(edge, 0, edge + width() / 10, 0);
    QColor colour = palette().color(QPalette::Base);
    fade.setColorAt(0, colour);
    colour.setAlpha(0);
    fade.setColorAt(1, colour);
    painter.fillRect(rect(), fade);
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
