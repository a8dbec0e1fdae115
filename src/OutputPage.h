#pragma once

#include "QELPage.h"

class QButtonGroup;

/// Chooses between a file and the broker.
class OutputPage : public QELPage
{
public:
    OutputPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override;

private:
    QButtonGroup* choice = nullptr;
    int outputSel = 0; // 0 file, 1 broker
};
