#include "Ui/Announce.h"

#include <QAccessible>
#include <QWidget>

void announce(QWidget& label)
{
    QAccessibleEvent announcement(&label, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}
