#include "Wizard/Pages/FirstPage.h"

#include "Resources/StringTable.h"
#include "Ui/CoverText.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

#include <QCheckBox>
#include <QVBoxLayout>

FirstPage::FirstPage() : QELPage(IDD_FIRST, "Typeforge - Introduction") {}

void FirstPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    hideWelcome = wizard->options.queryHideWelcome();
    hideBox = withId(IDC_HIDE_WELCOME, new QCheckBox("&Hide this screen the next time"));
    hideBox->setChecked(hideWelcome != 0);
    auto* column = new QVBoxLayout(this);
    column->addWidget(withId(IDC_WELCOME, coverText(loadText(IDS_WELCOME), wizard->titleFont)), 1);
    column->addWidget(hideBox);
    column->addSpacing(fontMetrics().height() * 2 / 3); // above the ground that the picture ends on
}

void FirstPage::OnSetActive()
{
    sheet()->SetWizardButtons(WizardSheet::buttonNext);
}

LRESULT FirstPage::OnWizardNext()
{
    hideWelcome = hideBox->isChecked() ? 1 : 0;
    wizard->options.setHideWelcome(hideWelcome);
    return IDD_SOURCE_TYPE;
}
