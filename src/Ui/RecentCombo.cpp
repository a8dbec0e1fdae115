#include "Ui/RecentCombo.h"

#include "Ui/ComboBox.h"

#include <QLineEdit>

QComboBox* newRecentCombo(const QString& label)
{
    auto* combo = new ComboBox(label);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setCompleter(nullptr);
    combo->lineEdit()->setAccessibleName(combo->accessibleName());
    return combo;
}
