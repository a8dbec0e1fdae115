#include "Wizard/Pages/OutputPage.h"

#include "Wizard/Run/WizardRun.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

OutputPage::OutputPage() : QELPage(IDD_OUTPUT, "Typeforge - Select output mode", IDS_OUTPUT_TITLE, IDS_OUTPUT_SUBTITLE)
{}

void OutputPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    choice = new QButtonGroup(this);
    choice->addButton(withId(IDC_TO_FILE, new QRadioButton("&Output to file in local or network folder")), toFile);
    choice->addButton(withId(IDC_TO_BROKER, new QRadioButton("Create type in &Broker")), toBroker);
    auto* group = new QGroupBox("Destination");
    auto* rows = new QVBoxLayout;
    group->setLayout(rows);
    for (QAbstractButton* button : choice->buttons())
        rows->addWidget(button);
    auto* column = new QVBoxLayout(this);
    column->addWidget(group);
    column->addStretch();
}

// The settings can hold any number; one without a button keeps the choice as it is.
void OutputPage::OnSetActive()
{
    if (QAbstractButton* button = choice->button(wizard->options.queryLastOutputSel()))
        button->setChecked(true);
}

LRESULT OutputPage::OnWizardNext()
{
    outputSel = static_cast<OutputMode>(choice->checkedId());
    wizard->options.setLastOutputSel(outputSel);
    return outputSel == toBroker ? IDD_LOGIN : IDD_OUTPUT_FILE;
}
