#include "Wizard/Pages/FinishPage.h"

#include "Resources/StringTable.h"
#include "Ui/CopyRow.h"
#include "Ui/CoverText.h"
#include "Ui/UiText.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

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
    sheet()->SetWizardButtons(WizardSheet::buttonBack | WizardSheet::buttonNext | WizardSheet::buttonFinish);
}

BOOL FinishPage::OnWizardFinish()
{
    wizard->options.flushValues();
    return 1;
}
