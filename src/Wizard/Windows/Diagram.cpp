#include "Wizard/Windows/Diagram.h"

#include "Base/Progress.h"
#include "Ui/UiText.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QImage>
#include <QObject>
#include <QPainter>
#include <QSvgGenerator>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

// A diagram is made in three steps: measure the boxes with Qt's fonts, let Graphviz place boxes of these sizes and
// route the arrows, and draw both with Qt. So it needs no fonts of Graphviz, and the same code draws screen and files.
namespace {

// Lengths are in points of the layout.
constexpr double kPadding = 8;
constexpr double kWidestText = 260; // of a name or a type; longer ones are cut in the middle
constexpr double kLegible = 0.3;    // below this scale texts can't be read

// Graphviz's time for routing grows with the square of the arrows. So with more arrows, only the first one to each box
// is routed, which suffices to place the boxes. The others become plain curves.
constexpr std::size_t kMaxRouted = 250;

std::vector<TypeGraph::Arrow> takeUnrouted(TypeGraph& graph)
{
    if (graph.arrows.size() <= kMaxRouted)
        return {};
    std::vector<char> isReached(graph.boxes.size());
    const auto isFirst = [&](const TypeGraph::Arrow& arrow) {
        return arrow.from < arrow.to && !std::exchange(isReached[arrow.to], 1); // boxes are sorted by distance
    };
    const auto rest = std::stable_partition(graph.arrows.begin(), graph.arrows.end(), isFirst);
    std::vector<TypeGraph::Arrow> unrouted(rest, graph.arrows.end());
    graph.arrows.erase(rest, graph.arrows.end());
    return unrouted;
}

// Returns a colour between two. All colours are mixed from those of the palette, so they suit dark and light
// backgrounds.
QColor mix(const QColor& a, const QColor& b, int percentOfB)
{
    const auto channel = [percentOfB](int x, int y) { return x + (y - x) * percentOfB / 100; };
    return {channel(a.red(), b.red()), channel(a.green(), b.green()), channel(a.blue(), b.blue())};
}

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

// By the font's description, because a copy would share its data.
Diagram::Fonts::Fonts(const QFont& like)
{
    text.fromString(like.toString());
    title.fromString(like.toString());
    title.setBold(true);
}

// Graphviz gets all boxes, but not the unrouted arrows, which become curves between the boxes that it has placed.
Diagram::Diagram(const TypeGraph& graph, const QPalette& palette, const QFont& textFont) :
    fonts(textFont), base(palette.color(QPalette::Base)), text(palette.color(QPalette::Text)),
    quiet(mix(base, text, 70)), frame(mix(base, text, 50)), head(mix(base, palette.color(QPalette::Highlight), 30)),
    line(mix(base, text, 65)), chosen(palette.color(QPalette::Highlight))
{
    rowHeight = std::ceil(QFontMetricsF(fonts.title).height() + kPadding / 2);
    TypeGraph routed = graph;
    const std::vector<TypeGraph::Arrow> unrouted = takeUnrouted(routed);
    std::vector<GraphBox> sizes;
    for (const TypeGraph::Box& box : graph.boxes) {
        boxes.push_back(measure(box));
        sizes.push_back({boxes.back().area.size(), boxes.back().rows.size()});
    }
    const std::optional<GraphLayout> layout = layOutGraph(routed.toDot(), sizes);
    if (!layout) {
        boxes.clear();
        return;
    }
    for (std::size_t i = 0; i < boxes.size(); ++i)
        area |= boxes[i].area = layout->boxes[i];
    for (const TypeGraph::Arrow& arrow : unrouted)
        addPlainArrow(arrow);
    arrows.insert(arrows.end(), layout->arrows.begin(), layout->arrows.end());
    for (const GraphLayout::Arrow& arrow : arrows)
        area |= arrow.line.boundingRect();
    area.adjust(-kPadding, -kPadding, kPadding, kPadding);
}

// Returns a box with its size, and its texts elided to the maximum width.
Diagram::Box Diagram::measure(const TypeGraph::Box& box) const
{
    const QFontMetricsF metrics(fonts.text), titleMetrics(fonts.title);
    Box measured{box.type, {}, {}};
    const QString title = titleMetrics.elidedText(toUi(box.title), Qt::ElideMiddle, 2 * kWidestText);
    measured.rows.push_back({title, {}, 0});
    double widest = titleMetrics.horizontalAdvance(title);
    const auto cut = [&](const CString& words) {
        return metrics.elidedText(toUi(words), Qt::ElideMiddle, kWidestText);
    };
    for (const TypeGraph::Row& row : box.rows) {
        const QString name = cut(row.name), type = cut(row.type);
        measured.rows.push_back({name, type, metrics.horizontalAdvance(type)});
        widest = std::max(widest, metrics.horizontalAdvance(name) + 2 * kPadding + measured.rows.back().typeWidth);
    }
    if (box.hidden > 0) {
        measured.rows.push_back({QObject::tr("... %1 more").arg(box.hidden), {}, 0});
        widest = std::max(widest, metrics.horizontalAdvance(measured.rows.back().name));
    }
    measured.area.setSize({std::ceil(widest + 2 * kPadding), rowHeight * static_cast<double>(measured.rows.size())});
    return measured;
}

// Adds a curve from the right end of a row to the title of a box. Row 0 of the arrow is the one below the title. It
// leaves and arrives horizontally, and bends more if the boxes are far apart.
void Diagram::addPlainArrow(const TypeGraph::Arrow& arrow)
{
    constexpr double headLength = 10;
    const QRectF &from = boxes[arrow.from].area, &to = boxes[arrow.to].area;
    const QPointF start(from.right(), from.top() + rowHeight * (static_cast<double>(arrow.row) + 1.5));
    const QPointF tip(to.left(), to.top() + rowHeight / 2);
    const double bend = std::max(40.0, std::abs(tip.x() - start.x()) / 3);
    QPainterPath path(start);
    path.cubicTo(start + QPointF(bend, 0), tip - QPointF(headLength + bend, 0), tip - QPointF(headLength, 0));
    arrows.push_back({path, tip});
}

// Draws only the exposed rows, because a box can be much larger than the window. The frame of a chosen box is at least
// two pixels broad at any scale.
void Diagram::drawBox(QPainter& painter, const Box& box, const Fonts& own, const QRectF& exposed, double scale,
                      bool isChosen) const
{
    QRectF place(box.area.topLeft(), QSizeF(box.area.width(), rowHeight));
    painter.fillRect(box.area, base);
    painter.fillRect(place, head);
    const auto last = static_cast<double>(box.rows.size() - 1);
    const auto rowAt = [&](double y) { return std::clamp(std::floor((y - box.area.top()) / rowHeight), 0.0, last); };
    painter.setFont(own.title);
    drawRow(painter, box.rows.front(), place, scale);
    painter.setFont(own.text);
    const auto end = static_cast<std::size_t>(rowAt(exposed.bottom()));
    for (auto row = std::max<std::size_t>(1, static_cast<std::size_t>(rowAt(exposed.top()))); row <= end; ++row) {
        place.moveTop(box.area.top() + rowHeight * static_cast<double>(row));
        drawRow(painter, box.rows[row], place, scale);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(isChosen ? QPen(chosen, std::max(3.0, 2 / scale)) : QPen(frame));
    painter.drawRect(box.area);
    painter.setPen(frame);
    painter.drawLine(box.area.topLeft() + QPointF(0, rowHeight), box.area.topRight() + QPointF(0, rowHeight));
}

// Draws a row, at a small scale as a bar of about the name's length.
void Diagram::drawRow(QPainter& painter, const Row& row, const QRectF& place, double scale) const
{
    const QRectF inner = place.adjusted(kPadding, 0, -kPadding, 0);
    if (scale < kLegible) {
        const double width = std::min(inner.width() / 2, 6.0 * static_cast<double>(row.name.size()));
        painter.fillRect(QRectF(inner.left(), inner.center().y() - rowHeight / 8, width, rowHeight / 4), frame);
        return;
    }
    const QFontMetricsF metrics(painter.font());
    const double line0 = inner.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    painter.setPen(text);
    painter.drawText(QPointF(inner.left(), line0), row.name);
    painter.setPen(quiet);
    if (!row.type.isEmpty())
        painter.drawText(QPointF(inner.right() - row.typeWidth, line0), row.type);
}

// The head is a triangle on the last piece of the arrow, from the end of the line to the tip.
void Diagram::drawArrow(QPainter& painter, std::size_t number) const
{
    const auto& [path, tip] = arrows[number];
    painter.setPen(QPen(line, 1.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    const QLineF point(path.currentPosition(), tip);
    if (point.length() == 0)
        return;
    QLineF foot = point.normalVector();
    foot.setLength(3.5);
    const QPointF side = foot.p2() - foot.p1();
    painter.setBrush(line);
    painter.drawPolygon(QPolygonF({tip, point.p1() + side, point.p1() - side}));
}

// Arrows come first, so that boxes lie over them, as on the screen.
void Diagram::draw(QPainter& painter) const
{
    const Fonts own(fonts.text);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, base);
    ProgressMeter meter(Work::writing, boxes.size(), 1);
    for (std::size_t arrow = 0; arrow < arrows.size(); ++arrow)
        drawArrow(painter, arrow);
    for (std::size_t box = 0; box < boxes.size(); ++box) {
        meter.step(box);
        drawBox(painter, boxes[box], own, boxes[box].area, 1, false);
    }
}

// The limit of pixels keeps the picture's memory at 400 MB or less.
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
    // QImage is null if its memory can't be allocated.
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
    // save() ends early without an error of its own, because the buffer refuses to write.
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
