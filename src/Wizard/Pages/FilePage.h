#pragma once

#include "Wizard/Pages/QELPage.h"

class PathLabel;
class QComboBox;
class QFrame;

/// The base of the two pages that choose a file: a combo box with the recent ones, Browse, and the folder in which a
/// name without a path is looked for. A file that is dropped on the page is chosen.
class FilePage : public QELPage
{
public:
    using QELPage::QELPage;

    void OnInitDialog() override;
    void OnSetActive() override;

    /// Fills the name of a file in, as if it had been chosen with Browse.
    virtual void takeFile(const CString& chosen);

protected:
    /// The id of the combo box.
    virtual int comboId() const = 0;

    /// Fills the combo box with the recent files.
    virtual void fillFiles(QComboBox& combo) = 0;

    /// Shows the file dialog; "" when the user cancels.
    virtual CString chooseFile() = 0;

    /// Files have been dropped on the page.
    virtual void OnDrop(const QStringList& files) { takeFile(files.front().toStdString()); }

    /// Remembers the folder that a file was chosen in.
    virtual void setFolder(const CString& folder) = 0;

    /// Makes the remembered folder the current one and answers the text that names it.
    virtual CString enterFolder() = 0;

    /// Reads the controls into the members when `save`, else shows the members.
    void UpdateData(bool save);

    /// Shows an error of the file that is named, like stay(), with the focus on its name and a red frame around that
    /// until it is changed.
    LRESULT stayAtFile(const CString& text, const CString& details);

    /// Puts controls below the others, from that column on: 1 is that of the file's name. A row takes the room that is
    /// left if `isHigh`.
    void addRow(QWidget* row, bool isHigh = false, int column = 0);

    /// The name that the folder is taken from when a file has been chosen.
    virtual CString namedFile() const { return fileName; }

    QComboBox& combo() const { return *fileCombo; }

    void OnPickfile();

    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    CString fileName;
    CString folderText;

private:
    void takeFolder();

    QComboBox* fileCombo = nullptr;
    QFrame* redFrame = nullptr; // lies over it
    PathLabel* folderLabel = nullptr;
    int rows = 2; // of the layout
};
