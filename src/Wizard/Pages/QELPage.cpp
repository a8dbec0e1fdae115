#include "Wizard/Pages/QELPage.h"

#include "Base/QELApp.h"
#include "Resources/StringTable.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

QELPage::QELPage(int id, const CString& caption, UINT titleId, UINT subtitleId) :
    WizardPage(id, Look::interior, caption, loadText(titleId), loadText(subtitleId))
{}

QELPage::QELPage(int id, const CString& caption) : WizardPage(id, Look::cover, caption, {}, {}) {}

void QELPage::OnInitDialog()
{
    wizard = dynamic_cast<WizardRun*>(sheet());
}

LRESULT QELPage::stay(UINT textId, const CString& details)
{
    return stay(loadText(textId), details);
}

LRESULT QELPage::stay(const CString& text, const CString& details)
{
    theApp.Error(text, IDS_ERROR_TITLE, details);
    return -1;
}
