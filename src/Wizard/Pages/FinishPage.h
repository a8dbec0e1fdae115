#pragma once

#include "Wizard/Pages/QELPage.h"

class CopyRow;
class PathLabel;
class QPushButton;

/// The last page: shows the result, from the script and the result lines, and offers a command line that does the same.
/// Finish stores the options and ends the wizard; Cancel only ends it. Back starts another import.
class FinishPage : public QELPage
{
public:
    FinishPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    /// Stores the options.
    BOOL OnWizardFinish() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }

private:
    QString summary() const;
    void view(const CString& name);

    PathLabel* done = nullptr; // the summary
    QPushButton* openFolder = nullptr;
    QPushButton* viewFile = nullptr;
    CopyRow* command = nullptr; // for a script
};
