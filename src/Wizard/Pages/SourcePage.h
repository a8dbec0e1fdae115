#pragma once

#include "Wizard/Pages/FilePage.h"

#include <vector>

class PreviewPane;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

/// Chooses the input file, or several files and folders that are one source, and runs the importer on them. May replace
/// WizardRun::message by the importer of the chosen reading. Controls for several sources are only shown if that
/// reading takes them. A preview shows the start of the source and the number of its types.
class SourcePage : public FilePage
{
public:
    SourcePage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }
    /// Several names, or a folder, also select the full reading if the importer has one besides a literal one.
    void takeFile(const CString& chosen) override;

protected:
    void hideEvent(QHideEvent* event) override;
    int comboId() const override { return IDC_INPUT_FILE; }
    WizardRun::WhichFolder whichFolder() const override { return WizardRun::folderInput; }
    CString chooseFile() override;
    void OnDrop(const QStringList& files) override;
    CString namedFile() const override;

private:
    QWidget* makeSetRow();
    QWidget* makeCatalogRow();
    // Let the user choose a folder as the source, or catalogues.
    void pickFolder();
    void pickCatalogs();
    bool takesFolders() const;
    void showSetRows();
    void chooseReading();
    CString sourceError(const std::vector<CString>& names) const;

    // Called for each change of a control that affects the import.
    void updatePreview();

    PreviewPane* pane = nullptr;
    QCheckBox* fullCheck = nullptr; // hidden if the importer has one reading
    QWidget* setRow = nullptr;      // the controls for several files
    QComboBox* layoutCombo = nullptr;
    QWidget* catalogRow = nullptr;
    QLineEdit* catalogEdit = nullptr;
    QLabel* catalogState = nullptr; // the catalogues of the environment that can't be read
    QLabel* hint = nullptr;         // why Next stays without a box; hidden once another source is named
};
