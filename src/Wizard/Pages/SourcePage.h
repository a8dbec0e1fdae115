#pragma once

#include "Wizard/Pages/FilePage.h"

class QCheckBox;

/// Chooses the input file and runs the importer on it.
class SourcePage : public FilePage
{
public:
    SourcePage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }

protected:
    int comboId() const override { return IDC_INPUT_FILE; }
    void fillFiles(QComboBox& combo) override;
    CString chooseFile() override;
    void OnDrop(const QStringList& files) override;
    void setFolder(const CString& folder) override;
    CString enterFolder() override;

private:
    void chooseReading();

    QCheckBox* fullCheck = nullptr;
};
