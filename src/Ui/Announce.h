#pragma once

#include <QAccessible>
#include <QLabel>

/// Shows a text and makes a screen reader read it out. The focus stays. For texts that appear while the focus is
/// elsewhere on the page.
inline void announce(QLabel& label, const QString& text)
{
    label.setText(text);
    label.show();
    QAccessibleEvent announcement(&label, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}
