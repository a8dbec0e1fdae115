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

/// The program's main window: the sheet with its pages.
class QELWizard : public WizardSheet, public WizardRun
{
public:
    /// Loads the options and adds the pages. Starts on the importer page if the welcome page is hidden.
    QELWizard(UINT captionId, CWnd* parent, UINT startPage, HBITMAP watermark, HPALETTE palette, HBITMAP header);
    ~QELWizard() override;

    void openFiles(const QStringList& files) override;

protected:
    void OnPageMade(WizardPage& page) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
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
};
