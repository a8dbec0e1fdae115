#pragma once

#include <QAccessible>
#include <QWidget>

/// Makes a screen reader read out a text that has just appeared or changed. The focus stays.
inline void announce(QWidget& label)
{
    QAccessibleEvent announcement(&label, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}
