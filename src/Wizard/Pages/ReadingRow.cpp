#include "Wizard/Pages/ReadingRow.h"

#include "Import/Full/FullMessage.h"
#include "Resources/DialogIds.h"
#include "Ui/ComboBox.h"
#include "Ui/ElidedLabel.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <algorithm>

// The box for the main element has a width of its own, not that of the longest name.
ReadingRow::ReadingRow() :
    mainElementLabel(plainLabel(tr("&Main element:"))), mainElement(new ChoiceCombo(mainElementLabel->text())),
    count(new ElidedLabel), fullButton(new QPushButton(tr("Read in &full"))), details(new QPushButton(tr("&Details")))
{
    mainElement->setObjectName(QString::number(IDC_MAIN_ELEMENT));
    mainElement->setMaxVisibleItems(20);
    mainElement->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    mainElement->setMinimumContentsLength(16);
    mainElementLabel->setBuddy(mainElement);
    count->setObjectName(QString::number(IDC_NOT_CARRIED_OVER));
    count->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    details->setObjectName(QString::number(IDC_DETAILS));
    connect(mainElement, &ChoiceCombo::chosen, this, [this](int index) {
        Q_EMIT mainElementChosen(index == 0 ? CString() : fromUi(mainElement->itemText(index)));
    });
    fullButton->setObjectName(QString::number(IDC_READ_IN_FULL));
    connect(fullButton, &QPushButton::clicked, this, &ReadingRow::fullWanted);
    connect(details, &QPushButton::clicked, this, &ReadingRow::detailsWanted);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(mainElementLabel);
    row->addWidget(mainElement);
    row->addStretch(); // takes the room of a hidden count
    row->addWidget(count, 1);
    row->addWidget(fullButton);
    row->addWidget(details);
}

// isHidden() instead of isVisible(), which is false while the page itself is hidden.
void ReadingRow::showReading(const MsgBase& message, const FullMessage* full, bool offersFull)
{
    showMainElements(full);
    showCount(message);
    fullButton->setVisible(offersFull);
    setVisible(offersFull || !mainElement->isHidden() || !details->isHidden());
}

// One main element alone leaves no choice, so the box is hidden.
void ReadingRow::showMainElements(const FullMessage* full)
{
    mainElement->clear();
    if (full) {
        QStringList names; // added at once, because each insertion updates the list
        for (const CString& name : full->queryMainTypes())
            names.append(toUi(name));
        mainElement->addItems(names);
        mainElement->setChosen(std::max(0, mainElement->findText(toUi(full->queryRoot()))));
    }
    const bool isChoice = mainElement->count() > 1;
    mainElementLabel->setVisible(isChoice);
    mainElement->setVisible(isChoice);
}

// If nothing was lost, details only count if there are places to look at.
void ReadingRow::showCount(const MsgBase& message)
{
    const SourceReport& report = message.queryReport();
    const CString losses = report.lossesInWords();
    const std::size_t left = report.queryTotal(SourceReport::detail);
    if (!losses.empty())
        count->setText(toUi(losses));
    else
        count->setText(tr("%1 not carried over")
                           .arg(shownCount(static_cast<qlonglong>(left), tr("detail was"), tr("details were"))));
    const bool hasReport = !losses.empty() || !report.queryEntries(SourceReport::detail).empty();
    count->setVisible(hasReport);
    details->setAccessibleDescription(count->text());
    details->setVisible(hasReport);
}
