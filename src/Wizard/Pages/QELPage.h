#pragma once

#include "Resources/DialogIds.h"
#include "Resources/StringIds.h"
#include "Ui/WizardPage.h"

class WizardRun;

/// The base of the wizard's pages: a page that knows the wizard's shared state.
class QELPage : public WizardPage
{
public:
    /// An interior page; title and subtitle are texts of the string table, 0 for none.
    QELPage(int dialogId, const CString& caption, UINT titleId, UINT subtitleId);

    /// A page on the watermark.
    QELPage(int dialogId, const CString& caption);

    void OnInitDialog() override;

protected:
    /// Shows the text `textId` of the string table as an error, with the reason behind it as its details, and answers
    /// -1: the page stays.
    static LRESULT stay(UINT textId, const CString& details = {});
    static LRESULT stay(const CString& text, const CString& details = {});

    WizardRun* wizard = nullptr; // taken when the dialog is initialised
};
