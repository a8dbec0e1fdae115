#include "Ui/Pictures.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>

namespace {
// Inverts the lightness and keeps the differences between the channels, because near white the hue itself is noise.
// White must become the background of the palette's text; black must not become glaring.
QRgb darkTone(QRgb tone, int ground)
{
    constexpr int kBrightest = 230;
    const auto [low, high] = std::minmax({qRed(tone), qGreen(tone), qBlue(tone)});
    const int lightness = (low + high) / 2;
    const int turned = ground + (255 - lightness) * (kBrightest - ground) / 255;
    const auto channel = [&](int value) { return std::clamp(turned + (value - lightness) * 7 / 8, 0, 255); };
    return qRgb(channel(qRed(tone)), channel(qGreen(tone)), channel(qBlue(tone)));
}

// `ground` is the lightness that white becomes, from 0 to 255.
void darken(QImage& image, int ground)
{
    image.convertTo(QImage::Format_RGB32);
    QRgb* const first = reinterpret_cast<QRgb*>(image.bits());
    std::transform(first, first + static_cast<qsizetype>(image.width()) * image.height(), first,
                   [ground](QRgb tone) { return darkTone(tone, ground); });
}
} // namespace

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
}

// The resources hold one set of tones, for light backgrounds.
QImage picture(int id, const QPalette& palette)
{
    QImage image;
    if (qGuiApp->devicePixelRatio() > 1)
        image.load(QString(":/%1@3x").arg(id)); // not every picture has one
    if (image.isNull())
        image.load(QString(":/%1").arg(id));
    if (!image.isNull() && isDark(palette))
        darken(image, palette.color(QPalette::Base).lightness());
    return image;
}

// The picture keeps its proportions, so that the drawing isn't distorted. Left of it, its first column is repeated;
// above, its first pixel.
void paintWatermark(QPainter& painter, const QRect& area, const QImage& watermark)
{
    QRect target(QPoint(), watermark.size().scaled(area.size(), Qt::KeepAspectRatio));
    target.moveBottomRight(area.bottomRight());
    const QRect beside(area.left(), target.top(), target.left() - area.left(), target.height());
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(area, watermark.pixelColor(0, 0));
    painter.drawImage(beside, watermark, QRect(0, 0, 1, watermark.height()));
    painter.drawImage(target, watermark);
    painter.restore();
}

// The picture is scaled to the band's height and stands at its right end. If it is wider than the band, its plain left
// side is cut.
void paintHeader(QPainter& painter, const QRect& band, const QImage& header)
{
    const int drawing = header.width() * band.height() / std::max(1, header.height());
    const QRect target(band.right() + 1 - drawing, band.top(), drawing, band.height());
    painter.save();
    painter.setClipRect(band);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(band, header.pixelColor(0, 0));
    painter.drawImage(target, header);
    painter.restore();
}
