#pragma once

#include "Wizard/Pages/FilePage.h"

/// Chooses the output file and writes the message document into it.
class OutputFile : public FilePage
{
public:
    OutputFile();

    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override;

protected:
    int comboId() const override { return IDC_OUTPUT_FILE; }
    void fillFiles(QComboBox& combo) override;
    CString chooseFile() override;
    void setFolder(const CString& folder) override;
    CString enterFolder() override;
};
