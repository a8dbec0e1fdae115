#pragma once

#include "Database/MainWindow.h"
#include "Database/Odbc.h"
#include "Import/Full/FullMessage.h"
#include "Wizard/Run/QELOptions.h"
#include "Wizard/Run/ScriptCommand.h"

#include <QFont>
#include <QStringList>

#include <functional>
#include <memory>

class WizardSheet;

/// The state of one run of the wizard, shared by its pages, and the steps that several pages take. Pages reach it as
/// QELPage::wizard. It is used in the window's thread, and by long work while the window waits for that.
class WizardRun : public MainWindow
{
public:
    /// The folders that setCurrentFolder() can make current: that in which the program was started, and those of the
    /// last input and output.
    enum WhichFolder
    {
        folderCWD = 0,
        folderInput = 1,
        folderOutput = 2
    };

    /// `sheet` runs long work.
    explicit WizardRun(WizardSheet& sheet) : sheet(sheet) {}

    /// Changes the process's current folder; an empty name means the start folder. Names without a path are then those
    /// of this folder. Returns the text that shows the folder. If the folder doesn't exist, changes nothing and returns
    /// the start folder's text.
    CString setCurrentFolder(WhichFolder which);

    /// Runs the importer on a file, or on several files and folders as one source; a bare name is looked up in the
    /// input folder. A full reading uses the layout of the options. Returns false on failure, which the user has been
    /// shown. Throws Cancelled. Leaves the current folder at the start folder after success, else at the input folder,
    /// which the page shows. Starts `script` anew. `names` must not be empty.
    bool importSources(std::vector<CString> names);

    /// Runs the last import again, by the current importer.
    bool importAgain() { return importSources(sources); }

    /// Opens the data source in `script`. Asks for user and password until they are accepted. Returns false if it can't
    /// be opened, after showing why, or if the user gives up. Throws std::runtime_error with the driver's reason, and
    /// Cancelled. An earlier connection is closed first, also if the new one fails.
    bool openDatabase();

    /// Runs a call that reads the open data source, as long work. Throws std::runtime_error with the driver's reason
    /// and the data source, and Cancelled.
    void readDatabase(const std::function<void()>& call);

    /// Returns the importer if it reads its source in full, else null. It is the object of `message`.
    FullMessage* fullMessage() const;

    /// Returns the constructs of a file that only the full reading supports, in words. Empty if there are none, there
    /// is no such reading, or it is the current one. Reads the file.
    CString unsupportedByLiteral(const CString& fileName) const;

    /// Takes files and folders as the source: chooses the importer of the first one and shows the input page with their
    /// names. A message lists those that can't be imported, or not with the first one.
    virtual void openFiles(const QStringList& files) = 0;

    CDatabase* queryDatabase() override { return database.get(); }

    std::unique_ptr<MsgBase> message; ///< the chosen importer; null if none
    QELOptions options;
    std::unique_ptr<CDatabase> database; ///< the last opened data source; null before
    ScriptCommand script;                ///< the steps since the importer was chosen
    CString unsupportedConstructs;       ///< of the last source: constructs that need the full reading
    QFont titleFont;                     ///< of the large texts on the first and the last page

private:
    // Returns the result of MsgBase::parseFile(). Sets unsupportedConstructs.
    int readSources();

    WizardSheet& sheet;
    std::vector<CString> sources; // of the last import, as given
};
