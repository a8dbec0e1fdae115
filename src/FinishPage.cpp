#include "FinishPage.h"

#include "Platform/Ui/CopyRow.h"
#include "Platform/Ui/CoverText.h"
#include "Platform/Ui/UiText.h"
#include "QELWizard.h"
#include "Resources/StringTable.h"

#include <QVBoxLayout>

FinishPage::FinishPage() : QELPage(IDD_FINISH, "Typeforge - Finish") {}

void FinishPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    auto* column = new QVBoxLayout(this);
    column->addWidget(withId(IDC_FINISHED, coverText(loadText(IDS_FINISHED), wizard->titleFont)), 1);
    command = new CopyRow("In a script:", "&Copy");
    column->addWidget(command);
}

void FinishPage::OnSetActive()
{
    command->setText(toUi(wizard->script.text(*wizard->message)));
    wizard->SetWizardButtons(WizardSheet::buttonBack | WizardSheet::buttonNext | WizardSheet::buttonFinish);
}

BOOL FinishPage::OnWizardFinish()
{
    wizard->options.flushValues();
    return 1;
}
