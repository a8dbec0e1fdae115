#pragma once

#include "Wizard/Pages/QELPage.h"

class CopyRow;
class PathLabel;
class QPushButton;

/// The last page: shows what was done and offers a command line that does the same. Finish and Cancel both store the
/// options and end the wizard. Back starts another import.
class FinishPage : public QELPage
{
public:
    FinishPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    BOOL OnWizardFinish() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }

private:
    QString summary() const;
    void view(const CString& name);

    PathLabel* done = nullptr;
    QPushButton* openFolder = nullptr;
    QPushButton* viewFile = nullptr;
    CopyRow* command = nullptr;
};
