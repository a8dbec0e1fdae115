#include "Ui/RecentCombo.h"

QComboBox* newRecentCombo()
{
    auto* combo = new QComboBox;
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setCompleter(nullptr);
    return combo;
}
