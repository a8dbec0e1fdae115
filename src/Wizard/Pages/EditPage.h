#pragma once

#include "Files/TemporaryFiles.h"
#include "Types/TypeStructure.h"
#include "Wizard/Pages/QELPage.h"
#include "Wizard/Windows/DocumentWindow.h"

#include <memory>
#include <vector>

class ListView;
class QHBoxLayout;
class QLabel;
class QPushButton;
class ReadingRow;
class StructurePane;

/// Lists the types of the import, shows the document of one in the user's viewer or in a window of the program's own,
/// its structure in a pane beside the list, and a picture of what it reaches.
class EditPage : public QELPage
{
public:
    EditPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override { return IDD_OUTPUT; }
    LRESULT OnWizardBack() override;

protected:
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void OnEdit();
    void OnDblclkEdit();
    QWidget* makeLists();
    QHBoxLayout* makeButtons();
    void addMenuRow(const QString& text, void (EditPage::*action)());
    int queryRow();
    void showDocument();
    void showPicture();
    void showStructure();
    void jumpTo(std::uint32_t type);
    const TypeStructure& queryStructure();

    void showTypes();
    void chooseMain(const CString& name);
    void readInFull();
    void showReport();
    void clear();
    void view(const CString& name, const CString& text, DocumentWindow::Kind kind);

    QLabel* wayOut = nullptr;
    ReadingRow* readingRow = nullptr;
    ListView* typeList = nullptr;
    StructurePane* pane = nullptr;
    QPushButton* paneButton = nullptr;
    std::vector<Element*> types;              // the list's rows; the importer owns them
    std::unique_ptr<TypeStructure> structure; // of these types; made when it is first asked for
    bool isWide = false;                      // there is room for the pane, and for the list as it is without
    TemporaryFiles tempFiles;
};
