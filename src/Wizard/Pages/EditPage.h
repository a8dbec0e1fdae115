#pragma once

#include "Files/TemporaryFile.h"
#include "Types/TypeStructure.h"
#include "Ui/ListRows.h"
#include "Wizard/Pages/QELPage.h"
#include "Wizard/Windows/DocumentWindow.h"

#include <functional>
#include <list>
#include <memory>
#include <vector>

class FullMessage;
class ListView;
class QHBoxLayout;
class QLabel;
class QPushButton;
class ReadingRow;
class StructurePane;

/// Lists the types of the import. Shows a type's document in the user's viewer or in a window of the program, its
/// structure in a pane beside the list, and a picture of the types that it reaches.
///
/// The page refers to elements of the importer while it is shown. They are dropped when it is hidden, and before
/// another import replaces them, see clearTypes().
class EditPage : public QELPage
{
public:
    EditPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override { return IDD_OUTPUT; }
    /// Returns to the page that has imported the source.
    LRESULT OnWizardBack() override;

protected:
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // Shows the selected type's document in the viewer, as a double click in the list does.
    void OnEdit();
    void OnDblclkEdit();
    QWidget* makeLists();
    QHBoxLayout* makeButtons();
    void addMenuRow(const QString& text, const std::function<void()>& action);
    int queryRow();
    void showDocument();
    void showPicture();
    // Shows or hides the pane with the structure.
    void showPane(bool visible);
    // Shares the list's width among its columns, by whether the pane is shown.
    void shareColumns();
    void showStructure();
    // Selects a type by its number in `structure`.
    void jumpTo(std::uint32_t type);

    // Fills the list with the types of the wizard's importer.
    void showTypes();
    void findMain();
    bool importBy(FullMessage* other);
    void chooseMain(const CString& name);
    void readInFull();
    void showReport();
    // Drops everything that refers to the importer.
    void clearTypes();

    QLabel* fullReadingHint = nullptr;
    ReadingRow* readingRow = nullptr;
    ListView* typeList = nullptr;
    StructurePane* pane = nullptr;
    QWidget* paneSide = nullptr; // the pane with its title
    QLabel* paneTitle = nullptr;
    QPushButton* paneButton = nullptr;
    std::vector<Element*> types; // the list's rows; the importer owns them
    int mainRow = -1;            // row of the main type; -1 if there is none
    ListRows::Mark mainMark;
    std::shared_ptr<const TypeStructure> structure; // of `types`
    bool hasOwnDescriptions = false;                // some descriptions of `types` aren't generated from the names
    bool isWide = false;                            // the window has room for the pane beside the whole list
    std::list<TemporaryFile> tempFiles;             // documents given to viewers; a list, because they can't be moved
};
