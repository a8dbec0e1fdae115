#pragma once

#include "CreateResultPage.h"
#include "DataSourcePage.h"
#include "DatabaseTablePage.h"
#include "EditPage.h"
#include "FinishPage.h"
#include "FirstPage.h"
#include "Formats/FullMessage.h"
#include "LoginToBroker.h"
#include "OutputFile.h"
#include "OutputPage.h"
#include "Platform/Database/MainWindow.h"
#include "Platform/Database/Odbc.h"
#include "Platform/Ui/WizardSheet.h"
#include "QELOptions.h"
#include "ScriptCommand.h"
#include "SourcePage.h"
#include "SourceTypePage.h"

#include <QFont>
#include <QStringList>

#include <memory>

/// The program's main window: the sheet with its pages, and the state of one run that they share.
class QELWizard : public WizardSheet, public MainWindow
{
public:
    enum WhichFolder
    {
        folderCWD = 0,
        folderInput = 1,
        folderOutput = 2
    };

    /// Loads the options and adds the pages. Starts on the importer page where the welcome page is to be hidden.
    QELWizard(UINT captionId, CWnd* parent, UINT startPage, HBITMAP watermark, HPALETTE palette, HBITMAP header);
    ~QELWizard() override;

    /// Changes the process's current folder (an empty one: the start folder) and answers the text that says where it
    /// is; the start folder's, and no change, when there is no such folder.
    CString setCurrentFolder(WhichFolder which);

    /// Runs the importer on a file, a bare name being one of the input folder. False when that failed, which the
    /// importer has then said. Raises Cancelled.
    bool importFile(const CString& fileName);

    /// Opens the data source that is in `script`. Asks for user and password as often as they are refused. False where
    /// it can't be opened, which has then been said, or the user gives up. Raises CDBException and Cancelled.
    bool openDatabase();

    /// The importer, when it is one that reads its source in full; else null.
    FullMessage* fullMessage() const;

    /// What a file uses that only the full reading of the importer's kind of source knows, in words. "" where that is
    /// nothing, there is no such reading, or it is the one that was chosen.
    CString usesOfFull(const CString& fileName) const;

    /// Takes the first of the files as the source: chooses its importer and shows the input page with its name filled
    /// in. What can't be taken, and the other files, are named in a message.
    void openFiles(const QStringList& files);

    CDatabase* queryDatabase() override { return database.get(); }

    std::unique_ptr<MsgBase> message; ///< the importer that was chosen; null when none is
    QELOptions options;
    std::unique_ptr<CDatabase> database; ///< the data source that was opened last; null until one is
    ScriptCommand script;                ///< what has been done since the importer was chosen
    QFont titleFont;                     ///< of the large texts on the first and the last page

protected:
    void OnPageMade(WizardPage& page) override;
    void OnHelp(int dialogId) override;
    void OnPageError(const std::exception& error) override;
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
