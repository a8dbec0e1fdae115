#pragma once

#include "Ui/WizardSheet.h"
#include "Wizard/Pages/CreateResultPage.h"
#include "Wizard/Pages/DataSourcePage.h"
#include "Wizard/Pages/DatabaseTablePage.h"
#include "Wizard/Pages/EditPage.h"
#include "Wizard/Pages/FinishPage.h"
#include "Wizard/Pages/FirstPage.h"
#include "Wizard/Pages/LoginToBroker.h"
#include "Wizard/Pages/OutputFile.h"
#include "Wizard/Pages/OutputPage.h"
#include "Wizard/Pages/SourcePage.h"
#include "Wizard/Pages/SourceTypePage.h"
#include "Wizard/Run/WizardRun.h"

#include <memory>

class HelpWindow;

/// The program's main window: the sheet with its pages. It is both the window and the state of the run, so a page finds
/// the state by a cast of its sheet.
///
/// The order of destruction matters: the pages go first, while the importer, whose elements the page of types holds,
/// and the sheet still exist.
class QELWizard : public WizardSheet, public WizardRun
{
public:
    /// Loads the options and adds the pages. Starts on the importer page if the welcome page is hidden. `palette` is
    /// unused.
    QELWizard(UINT captionId, CWnd* parent, UINT startPage, HBITMAP watermark, HPALETTE palette, HBITMAP header);
    ~QELWizard() override;

    /// Goes through the pages as the user would: chooses the importer, and continues to the input page with the names.
    /// A box lists the files that are left out. `files` must not be empty.
    void openFiles(const QStringList& files) override;

    /// Returns the help window, which is created on first use and hidden until it shows a topic.
    HelpWindow& helpWindow();

protected:
    /// Restores the widths of the page's columns.
    void OnPageMade(WizardPage& page) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // In the order of the sheet.
    FirstPage firstPage;
    SourceTypePage sourceTypePage;
    DataSourcePage dataSourcePage;
    DatabaseTablePage databaseTablePage;
    SourcePage sourcePage;
    EditPage editPage;
    OutputPage outputPage;
    OutputFile outputFile;
    LoginToBroker loginToBroker;
    CreateResultPage createResultPage;
    FinishPage finishPage;

    std::unique_ptr<HelpWindow> help; // keeps its size and the pages visited while it is closed
};
