#pragma once

#include "Wizard/Pages/QELPage.h"

class CopyRow;

/// The last page: Finish stores the options and ends, Back starts another import. Offers the command
/// line that does the same as this run.
class FinishPage : public QELPage
{
public:
    FinishPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    BOOL OnWizardFinish() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }

private:
    CopyRow* command = nullptr;
};
