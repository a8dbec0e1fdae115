#pragma once

#include "Wizard/Pages/FilePage.h"

#include <QTimer>

class QLabel;

/// Chooses the output file and writes the message document to it. Suggests a name until the user has used one, and
/// shows whether a file will be replaced. Sets the script's output, which the last page shows.
class OutputFile : public FilePage
{
public:
    OutputFile();

    void OnInitDialog() override;
    void OnSetActive() override;
    /// Writes the document. Stays if that fails: an older file is then as it was.
    LRESULT OnWizardNext() override;
    /// Makes the start folder current again.
    LRESULT OnWizardBack() override;

protected:
    int comboId() const override { return IDC_OUTPUT_FILE; }
    WizardRun::WhichFolder whichFolder() const override { return WizardRun::folderOutput; }
    CString chooseFile() override;

private:
    void suggest();
    // Shows whether a file or folder of the typed name exists.
    void showState();

    QLabel* state = nullptr;
    QTimer delay;      // avoids a disk access after each key
    CString suggested; // the last suggestion; another text in the field is the user's
};
