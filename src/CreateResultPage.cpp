#include "CreateResultPage.h"

#include "QELWizard.h"

#include <QGroupBox>
#include <QListWidget>
#include <QVBoxLayout>

CreateResultPage::CreateResultPage() : QELPage(IDD_CREATE_RESULT, "Typeforge - Creation result", 0, 0) {}

void CreateResultPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    resultBox = withId(IDC_RESULTS, new QListWidget);
    resultBox->setSelectionMode(QAbstractItemView::NoSelection);
    resultBox->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    resultBox->setUniformItemSizes(true); // of many thousand lines only those that show are measured
    resultBox->setAccessibleName("Result of type creation");
    auto* group = new QGroupBox("Result of type creation");
    (new QVBoxLayout(group))->addWidget(resultBox);
    (new QVBoxLayout(this))->addWidget(group);
}

void CreateResultPage::OnSetActive()
{
    wizard->options.fillResultList(*resultBox);
    wizard->SetWizardButtons(WizardSheet::buttonBack | WizardSheet::buttonNext);
}
