#include "Ui/ProgramStyle.h"

#include "Ui/Pictures.h"

#include <QPainter>
#include <QStyleOption>

void ProgramStyle::polish(QPalette& palette)
{
    QProxyStyle::polish(palette);
    QColor colour = palette.color(QPalette::Text);
    colour.setAlphaF(0.5F);
    palette.setColor(QPalette::PlaceholderText, colour);
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isIndicator = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    if (!isIndicator || !isDark(option->palette) || baseStyle()->name() != "fusion")
        return;
    QColor colour = option->palette.color(QPalette::WindowText);
    colour.setAlphaF((option->state & State_Enabled) ? 0.6F : 0.3F);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(colour);
    const QRectF edge = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (element == PE_IndicatorCheckBox)
        painter->drawRect(edge);
    else
        painter->drawEllipse(edge);
    painter->restore();
}
