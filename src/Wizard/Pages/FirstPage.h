#pragma once

#include "Wizard/Pages/QELPage.h"

class QCheckBox;

/// Greets the user and offers to skip itself from the next run on. The choice is stored when the wizard is finished.
class FirstPage : public QELPage
{
public:
    FirstPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    /// Takes the choice into the options.
    LRESULT OnWizardNext() override;

private:
    int hideWelcome = 0;
    QCheckBox* hideBox = nullptr;
};
