#pragma once

#include <QProxyStyle>

/// The desktop's style, corrected where controls become invisible: Qt's own style draws unchecked check boxes and radio
/// buttons in black on a dark background, and some palettes hide the placeholder texts.
class ProgramStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    /// Makes placeholder texts half as strong as other texts.
    void polish(QPalette& palette) override;
    /// Draws the edges of check boxes and radio buttons again, on a dark background of Qt's own style only.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};
