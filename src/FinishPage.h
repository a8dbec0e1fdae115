#pragma once

#include "QELPage.h"

/// The last page: Finish stores the options and ends, Back starts another import.
class FinishPage : public QELPage
{
public:
    FinishPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    BOOL OnWizardFinish() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }
};
