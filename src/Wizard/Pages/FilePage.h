#pragma once

#include "Wizard/Pages/QELPage.h"
#include "Wizard/Run/WizardRun.h"

class PathLabel;
class QComboBox;
class QFrame;

/// The base of the two pages that choose a file: a combo box with recent files, Browse, and the folder for names
/// without a path. A file dropped on the page is chosen. While the page is shown, the process's current folder is that
/// folder.
class FilePage : public QELPage
{
public:
    using QELPage::QELPage;

    void OnInitDialog() override;
    void OnSetActive() override;

    /// Takes a file name as if it had been chosen with Browse. Several names are in quotes, see SourceList.h.
    virtual void takeFile(const CString& chosen);

protected:
    /// Returns the id of the combo box.
    virtual int comboId() const = 0;

    /// Returns which folder holds files without a path.
    virtual WizardRun::WhichFolder whichFolder() const = 0;

    /// Shows the file dialog and returns the name, empty if the user cancels.
    virtual CString chooseFile() = 0;

    /// Called when files are dropped on the page; there is at least one.
    virtual void OnDrop(const QStringList& files) { takeFile(files.front().toStdString()); }

    /// Reads the controls into the members if `save`, else writes the members to the controls.
    void UpdateData(bool save);

    /// Shows an error about the chosen file, like stay(). Focuses its name and puts a red frame around it until the
    /// name is changed.
    LRESULT stayAtFile(const CString& text, const CString& details);

    /// Removes the red frame, for another control whose change can remedy the error.
    void removeFrame() { redFrame->hide(); }

    /// Adds controls below the others, from a column on; column 1 is that of the file's name. With `isTall` the row
    /// takes the remaining height.
    void addRow(QWidget* row, bool isTall = false, int column = 0);

    /// Returns the name whose folder is shown after a file has been chosen.
    virtual CString namedFile() const { return fileName; }

    QComboBox& combo() const { return *fileCombo; }

    void OnPickfile();

    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    // The values of the controls as of the last UpdateData().
    CString fileName;
    CString folderText;

private:
    QComboBox* fileCombo = nullptr;
    QFrame* redFrame = nullptr; // over the combo box
    PathLabel* folderLabel = nullptr;
    int rows = 2; // of the layout, so far
};
