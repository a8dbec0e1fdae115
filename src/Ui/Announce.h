#pragma once

#include <QAccessible>
#include <QLabel>

/// Shows a text and makes a screen reader read it out. The focus stays. For what appears while the user is elsewhere on
/// the page.
inline void announce(QLabel& label, const QString& text)
{
    label.setText(text);
    label.show();
    QAccessibleEvent announcement(&label, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}
