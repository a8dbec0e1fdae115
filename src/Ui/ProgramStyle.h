#pragma once

#include <QProxyStyle>

/// The desktop's style, corrected where controls become invisible: Qt's own style draws unchecked check boxes and radio
/// buttons in black on a dark background, and some palettes hide the placeholder texts.
class ProgramStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};
