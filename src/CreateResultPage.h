#pragma once

#include "QELPage.h"

class QListWidget;

/// Shows the lines of the last creation run.
class CreateResultPage : public QELPage
{
public:
    CreateResultPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardBack() override { return IDD_LOGIN; }
    LRESULT OnWizardNext() override { return IDD_FINISH; }

private:
    QListWidget* resultBox = nullptr;
};
