#pragma once

#include "Database/MainWindow.h"
#include "Database/Odbc.h"
#include "Import/Full/FullMessage.h"
#include "Wizard/Run/QELOptions.h"
#include "Wizard/Run/ScriptCommand.h"

#include <QFont>
#include <QStringList>

#include <memory>

class WizardSheet;

/// The state of one run of the wizard, which its pages share, and the steps that more than one page takes.
class WizardRun : public MainWindow
{
public:
    enum WhichFolder
    {
        folderCWD = 0,
        folderInput = 1,
        folderOutput = 2
    };

    /// Work that takes long is done on `sheet`.
    explicit WizardRun(WizardSheet& sheet) : sheet(sheet) {}

    /// Changes the process's current folder (an empty one: the start folder) and returns the text that says where it
    /// is; the start folder's, and no change, when there is no such folder.
    CString setCurrentFolder(WhichFolder which);

    /// Runs the importer on a file, or on several files and folders as one source; a bare name is one of the input
    /// folder. A full reading takes the layout of the options. False if that failed, which the user has been told.
    /// Raises Cancelled.
    bool importSources(const std::vector<CString>& names);

    /// The same once more, with what was imported last.
    bool importAgain() { return importSources(std::vector<CString>(sources)); }

    /// Opens the data source that is in `script`. Asks for user and password as often as they are refused. False if
    /// it can't be opened, which has then been said, or the user gives up. Raises CDBException and Cancelled.
    bool openDatabase();

    /// The importer, when it is one that reads its source in full; else null.
    FullMessage* fullMessage() const;

    /// What a file uses that only the full reading of the importer's kind of source knows, in words. "" if that is
    /// nothing, there is no such reading, or it is the one that was chosen.
    CString usesOfFull(const CString& fileName) const;

    /// Takes files and folders as the source: chooses the importer of the first and shows the input page with the names
    /// filled in. What can't be taken, or not with the first, is named in a message.
    virtual void openFiles(const QStringList& files) = 0;

    CDatabase* queryDatabase() override { return database.get(); }

    std::unique_ptr<MsgBase> message; ///< the importer that was chosen; null when none is
    QELOptions options;
    std::unique_ptr<CDatabase> database; ///< the data source that was opened last; null until one is
    ScriptCommand script;                ///< what has been done since the importer was chosen
    CString usedByFull; ///< what the source that was imported uses that only the full reading knows; see usesOfFull()
    QFont titleFont;    ///< of the large texts on the first and the last page

private:
    int readSources();

    WizardSheet& sheet;
    std::vector<CString> sources; // as they were given last
};
