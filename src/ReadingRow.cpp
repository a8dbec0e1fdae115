#include "ReadingRow.h"

#include "Formats/FullMessage.h"
#include "Platform/Ui/UiText.h"
#include "Resources/DialogIds.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

ReadingRow::ReadingRow() :
    mainElementLabel(new QLabel(tr("&Main element:"))), mainElement(new QComboBox), count(new QLabel),
    details(new QPushButton(tr("&Details")))
{
    mainElement->setObjectName(QString::number(IDC_MAIN_ELEMENT));
    mainElement->setMaxVisibleItems(20);
    mainElement->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    mainElement->setMinimumContentsLength(20);
    mainElementLabel->setBuddy(mainElement);
    count->setObjectName(QString::number(IDC_NOT_CARRIED_OVER));
    details->setObjectName(QString::number(IDC_DETAILS));
    connect(mainElement, &QComboBox::activated, this, [this](int index) {
        Q_EMIT mainElementChosen(index == 0 ? CString() : fromUi(mainElement->itemText(index)));
    });
    connect(details, &QPushButton::clicked, this, &ReadingRow::detailsWanted);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(mainElementLabel);
    row->addWidget(mainElement);
    row->addStretch();
    row->addWidget(count);
    row->addWidget(details);
}

void ReadingRow::showReading(const MsgBase& message, const FullMessage* full)
{
    mainElement->clear();
    if (full)
        for (const CString& name : full->queryMainTypes())
            mainElement->addItem(toUi(name));
    showCount(message);
    const bool isChoice = mainElement->count() > 1;
    mainElementLabel->setVisible(isChoice);
    mainElement->setVisible(isChoice);
    setVisible(isChoice || message.queryReport().queryPlaced() > 0);
}

void ReadingRow::showCount(const MsgBase& message)
{
    const std::size_t left = message.queryReport().queryPlaced();
    count->setText(left == 1 ? tr("1 construct was not carried over")
                             : tr("%L1 constructs were not carried over").arg(left));
    count->setVisible(left > 0);
    details->setAccessibleDescription(count->text());
    details->setVisible(left > 0);
}
