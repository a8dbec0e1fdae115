#include "Wizard/Windows/DiagramFile.h"

#include "Base/Progress.h"
#include "Wizard/Windows/Diagram.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace {

// A buffer whose writes fail once the work is cancelled. Compressing a large picture takes seconds, and nothing else
// can end it.
class WantedBuffer : public QBuffer
{
protected:
    qint64 writeData(const char* bytes, qint64 size) override
    {
        return isStillWanted() ? QBuffer::writeData(bytes, size) : -1;
    }
};

} // namespace

QSize pngSize(const Diagram& diagram, double& scale)
{
    constexpr double kLargest = 100e6; // pixels of 4 bytes
    const QSizeF size = diagram.queryArea().size();
    scale = std::min({2.0, kMaxPixels / size.width(), kMaxPixels / size.height(),
                      std::sqrt(kLargest / (size.width() * size.height()))});
    return (size * scale).toSize().expandedTo({1, 1}).boundedTo({kMaxPixels, kMaxPixels});
}

QByteArray drawPng(const Diagram& diagram)
{
    double scale = 1;
    QImage image(pngSize(diagram, scale), QImage::Format_RGB32);
    if (image.isNull())
        throw std::runtime_error("There is too little memory for the picture; save it as SVG.");
    QPainter painter(&image);
    painter.scale(scale, scale);
    painter.translate(-diagram.queryArea().topLeft());
    diagram.draw(painter);
    painter.end();
    WantedBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    image.save(&bytes, "PNG");
    throwIfCancelled();
    return bytes.data();
}

QByteArray drawSvg(const Diagram& diagram, const QString& title)
{
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QSvgGenerator svg;
    svg.setOutputDevice(&bytes);
    if (title == title.toHtmlEscaped()) // Qt doesn't escape it
        svg.setTitle(title);
    svg.setSize(diagram.queryArea().size().toSize());
    svg.setViewBox(diagram.queryArea());
    QPainter painter(&svg);
    diagram.draw(painter);
    painter.end();
    return bytes.data();
}
