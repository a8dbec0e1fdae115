#include "Wizard/Windows/KindMark.h"

#include <QPainter>

#include <array>

namespace {

// A rounded square of 16 units, in a colour that stands out on light and dark backgrounds.
struct Kind
{
    const char* word;
    QColor colour;
    std::array<QRectF, 4> strokes; // in white
};

// Indexed by Element::ElementTypes.
const Kind kKinds[] = {
    {"enumeration", QColor(0x8e, 0x5c, 0xc4), {QRectF(4, 4, 2, 2), {4, 7, 2, 2}, {4, 10, 2, 2}, {8, 7, 4, 2}}},
    {"array", QColor(0xc0, 0x7a, 0x1c), {QRectF(4, 4, 2, 8), {10, 4, 2, 8}, {7, 7, 2, 2}, {}}},
    {"record", QColor(0x2f, 0x7e, 0xc2), {QRectF(4, 4, 8, 2), {4, 7, 8, 1}, {4, 9, 8, 1}, {4, 11, 8, 1}}},
    {"table", QColor(0x2c, 0x93, 0x62), {QRectF(4, 4, 3, 3), {9, 4, 3, 3}, {4, 9, 3, 3}, {9, 9, 3, 3}}},
};

// Draws a mark for one size, so that its edges are sharp there.
QPixmap draw(const Kind& kind, int size)
{
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kind.colour);
    painter.drawRoundedRect(QRectF(1, 1, 14, 14), 3, 3);
    painter.setBrush(Qt::white);
    for (const QRectF& stroke : kind.strokes)
        painter.drawRect(stroke);
    return picture;
}

ListRows::Mark markOf(const Kind& kind)
{
    ListRows::Mark mark;
    mark.word = kind.word;
    for (const int size : {16, 24, 32, 48}) // for larger fonts and dense screens
        mark.icon.addPixmap(draw(kind, size));
    return mark;
}

} // namespace

const ListRows::Mark& kindMark(Element::ElementTypes type)
{
    static const ListRows::Mark marks[] = {markOf(kKinds[Element::typeEnum]), markOf(kKinds[Element::typeArray]),
                                           markOf(kKinds[Element::typeRow]), markOf(kKinds[Element::typeTable])};
    return marks[type];
}
