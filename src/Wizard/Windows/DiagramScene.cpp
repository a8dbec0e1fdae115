#include "Wizard/Windows/DiagramScene.h"

#include "Ui/GraphLayout.h"
#include "Ui/UiText.h"

#include <QFontMetricsF>
#include <QGraphicsPathItem>
#include <QGraphicsSimpleTextItem>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double kPadding = 8;
constexpr double kWidestText = 260; // of a name or a type; longer ones are cut in the middle

// Routing takes Graphviz the square of what there is to route. So in a web of more arrows only the first that leads to
// each box is routed, which places the boxes; the others are drawn as plain curves.
constexpr std::size_t kMostRouted = 250;

std::vector<TypeGraph::Arrow> takeUnrouted(TypeGraph& graph)
{
    if (graph.arrows.size() <= kMostRouted)
        return {};
    std::vector<char> isReached(graph.boxes.size());
    const auto isFirst = [&](const TypeGraph::Arrow& arrow) {
        return arrow.from < arrow.to && !std::exchange(isReached[arrow.to], 1); // boxes come nearest first
    };
    const auto rest = std::stable_partition(graph.arrows.begin(), graph.arrows.end(), isFirst);
    std::vector<TypeGraph::Arrow> unrouted(rest, graph.arrows.end());
    graph.arrows.erase(rest, graph.arrows.end());
    return unrouted;
}

QColor mix(const QColor& a, const QColor& b, int percentOfB)
{
    const auto channel = [percentOfB](int x, int y) { return x + (y - x) * percentOfB / 100; };
    return {channel(a.red(), b.red()), channel(a.green(), b.green()), channel(a.blue(), b.blue())};
}

QString hiddenText(std::size_t count)
{
    return QObject::tr("... %1 more").arg(count);
}

} // namespace

DiagramScene::DiagramScene(const TypeGraph& graph, const QPalette& colours, const QFont& textFont) :
    palette(colours), font(textFont), titleFont(textFont)
{
    titleFont.setBold(true);
    rowHeight = std::ceil(QFontMetricsF(titleFont).height() + kPadding / 2);
    setBackgroundBrush(palette.base());
    TypeGraph routed = graph;
    const std::vector<TypeGraph::Arrow> unrouted = takeUnrouted(routed);
    std::vector<GraphBox> sizes;
    for (const TypeGraph::Box& box : graph.boxes)
        sizes.push_back(measure(box));
    const std::optional<GraphLayout> layout = layOutGraph(routed.toDot(), sizes);
    if (!layout)
        return;
    for (const TypeGraph::Arrow& arrow : unrouted)
        drawPlainArrow(arrow, *layout);
    for (const GraphLayout::Arrow& arrow : layout->arrows)
        drawArrow(arrow.line, arrow.tip);
    for (std::size_t i = 0; i < graph.boxes.size(); ++i)
        drawBox(graph.boxes[i], layout->boxes[i]);
    start = layout->boxes.front();
    setSceneRect(itemsBoundingRect().marginsAdded({kPadding, kPadding, kPadding, kPadding}));
}

GraphBox DiagramScene::measure(const TypeGraph::Box& box) const
{
    const QFontMetricsF metrics(font);
    const auto width = [&metrics](const CString& text) {
        return text.empty() ? 0 : std::min(metrics.horizontalAdvance(toUi(text)), kWidestText);
    };
    double widest = std::min(QFontMetricsF(titleFont).horizontalAdvance(toUi(box.title)), 2 * kWidestText);
    for (const TypeGraph::Row& row : box.rows)
        widest = std::max(widest, width(row.name) + 2 * kPadding + width(row.type));
    if (box.hidden > 0)
        widest = std::max(widest, metrics.horizontalAdvance(hiddenText(box.hidden)));
    const std::size_t rows = 1 + box.rows.size() + (box.hidden > 0);
    return {{std::ceil(widest + 2 * kPadding), rowHeight * static_cast<double>(rows)}, rows};
}

void DiagramScene::drawBox(const TypeGraph::Box& box, const QRectF& area)
{
    const QColor frame = mix(palette.color(QPalette::Base), palette.color(QPalette::Text), 50);
    const QColor head = mix(palette.color(QPalette::Base), palette.color(QPalette::Highlight), 30);
    QRectF row(area.topLeft(), QSizeF(area.width(), rowHeight));
    addRect(area, QPen(frame), palette.base());
    addRect(row, QPen(frame), head);
    drawText(toUi(box.title), titleFont, palette.color(QPalette::Text), row, false);
    for (const TypeGraph::Row& part : box.rows) {
        row.translate(0, rowHeight);
        drawRow(part, row);
    }
    if (box.hidden > 0)
        drawText(hiddenText(box.hidden), font, palette.color(QPalette::Text), row.translated(0, rowHeight), false);
}

void DiagramScene::drawRow(const TypeGraph::Row& row, const QRectF& area)
{
    const QColor quiet = mix(palette.color(QPalette::Base), palette.color(QPalette::Text), 70);
    drawText(toUi(row.name), font, palette.color(QPalette::Text), area, false);
    drawText(toUi(row.type), font, quiet, area, true);
}

void DiagramScene::drawText(const QString& text, const QFont& textFont, const QColor& tone, const QRectF& area,
                            bool right)
{
    if (text.isEmpty())
        return;
    const QFontMetricsF metrics(textFont);
    const double widest = textFont.bold() ? 2 * kWidestText : kWidestText;
    auto* item = addSimpleText(metrics.elidedText(text, Qt::ElideMiddle, widest), textFont);
    item->setBrush(tone);
    const double width = item->boundingRect().width();
    item->setPos(right ? area.right() - kPadding - width : area.left() + kPadding,
                 area.center().y() - item->boundingRect().height() / 2);
}

void DiagramScene::drawArrow(const QPainterPath& line, const QPointF& tip)
{
    const QColor tone = mix(palette.color(QPalette::Base), palette.color(QPalette::Text), 65);
    addPath(line, QPen(tone, 1.2));
    const QLineF head(line.currentPosition(), tip);
    if (head.length() == 0)
        return;
    QLineF foot = head.normalVector();
    foot.setLength(3.5);
    const QPointF side = foot.p2() - foot.p1();
    addPolygon(QPolygonF({tip, head.p1() + side, head.p1() - side}), QPen(tone), tone);
}

void DiagramScene::drawPlainArrow(const TypeGraph::Arrow& arrow, const GraphLayout& layout)
{
    constexpr double head = 10;
    const QRectF& from = layout.boxes[arrow.from];
    const QRectF& to = layout.boxes[arrow.to];
    const QPointF start(from.right(), from.top() + rowHeight * (static_cast<double>(arrow.row) + 1.5));
    const QPointF tip(to.left(), to.top() + rowHeight / 2);
    const double bend = std::max(40.0, std::abs(tip.x() - start.x()) / 3);
    QPainterPath line(start);
    line.cubicTo(start + QPointF(bend, 0), tip - QPointF(head + bend, 0), tip - QPointF(head, 0));
    drawArrow(line, tip);
}
