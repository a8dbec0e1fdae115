#pragma once

#include "Wizard/Pages/QELPage.h"

class CopyRow;
class PathLabel;
class QPushButton;

/// The last page: says what has been done and offers the command line that does the same. Finish, and Cancel too, store
/// the options and end; Back starts another import.
class FinishPage : public QELPage
{
public:
    FinishPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    BOOL OnWizardFinish() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }

private:
    QString whatWasDone() const;
    void view(const CString& name);

    PathLabel* done = nullptr;
    QPushButton* openFolder = nullptr;
    QPushButton* viewFile = nullptr;
    CopyRow* command = nullptr;
};
