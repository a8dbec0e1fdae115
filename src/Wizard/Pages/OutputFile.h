#pragma once

#include "Wizard/Pages/FilePage.h"

#include <QTimer>

class QLabel;

/// Chooses the output file and writes the message document into it. Suggests a name as long as none has been used, and
/// says what would be replaced.
class OutputFile : public FilePage
{
public:
    OutputFile();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override;

protected:
    int comboId() const override { return IDC_OUTPUT_FILE; }
    void fillFiles(QComboBox& combo) override;
    CString chooseFile() override;
    void setFolder(const CString& folder) override;
    CString enterFolder() override;

private:
    void suggest();
    void showState();

    QLabel* state = nullptr;
    QTimer delay; // so that not every key looks at the disk
    CString suggested;
};
