#pragma once

#include "Wizard/Pages/QELPage.h"

class QButtonGroup;

/// Chooses between a file and the broker as the destination. The choice of the last run is suggested.
class OutputPage : public QELPage
{
public:
    /// Numbered as in the settings.
    enum OutputMode : int
    {
        toFile = 0,
        toBroker = 1
    };

    OutputPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override;

private:
    QButtonGroup* choice = nullptr; // its ids are those of OutputMode
    OutputMode outputSel = toFile;
};
