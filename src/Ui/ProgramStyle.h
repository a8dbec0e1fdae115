#pragma once

#include <QProxyStyle>

/// The desktop's style, mended where it lets a control disappear: the toolkit's own one draws check boxes and radio
/// buttons that aren't chosen in black on a dark ground, and some desktops' palettes the texts in empty fields.
class ProgramStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};
