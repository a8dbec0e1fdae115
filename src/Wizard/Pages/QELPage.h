#pragma once

#include "Resources/DialogIds.h"
#include "Resources/StringIds.h"
#include "Ui/WizardPage.h"

class WizardRun;

/// The base of the wizard's pages: a page with access to the wizard's state. A page has its controls as members; data
/// for other pages is in the wizard's options or run.
class QELPage : public WizardPage
{
public:
    /// An interior page; title and subtitle are texts of the string table, 0 for none.
    QELPage(int dialogId, const CString& caption, UINT titleId, UINT subtitleId);

    /// A page on the watermark.
    QELPage(int dialogId, const CString& caption);

    /// Sets `wizard`. A page that creates controls calls this first.
    void OnInitDialog() override;

protected:
    /// Shows an error, by its text or its id in the string table, with the cause as its details. Returns -1, which
    /// makes the page stay.
    static LRESULT stay(UINT textId, const CString& details = {});
    static LRESULT stay(const CString& text, const CString& details = {});

    WizardRun* wizard = nullptr; // set by OnInitDialog()
};
