#include "Wizard/Run/WizardRun.h"

#include "Base/QELApp.h"
#include "Base/Secret.h"
#include "Database/ConnectString.h"
#include "Import/Registry/SourceSet.h"
#include "Resources/StringTable.h"
#include "Ui/ModalBox.h"
#include "Ui/UiText.h"
#include "Ui/WaitCursor.h"
#include "Ui/WizardPage.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/DataSourceLogon.h"
#include "Wizard/Run/SourceList.h"

#include <span>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace {

// Returns the driver's error with the name of the data source, which drivers often omit, and with what failed. Only our
// own words for it count as naming: the driver's own prefix, "[SQLite]", can be the data source's name by chance.
std::runtime_error namedError(const CString& source, const char* failed, const CString& words)
{
    const bool isNamed = words.find("data source " + source) != CString::npos ||
                         words.find("data source called " + source) != CString::npos;
    return std::runtime_error(isNamed ? words : "The data source " + source + " can't be " + failed + ".\n" + words);
}

} // namespace

CString WizardRun::setCurrentFolder(WhichFolder which)
{
    CString folder = options.queryCWD();
    if (which == folderInput && !options.queryInputFolder().empty())
        folder = options.queryInputFolder();
    if (which == folderOutput && !options.queryOutputFolder().empty())
        folder = options.queryOutputFolder();
    if (::chdir(folder.c_str()) != 0)
        folder = options.queryCWD();
    return fillText(loadText(IDS_CURRENT_FOLDER), folder);
}

// The names are stored as given, relative to the input folder, but absolute in `script`, which is used elsewhere.
bool WizardRun::importSources(std::vector<CString> names)
{
    setCurrentFolder(folderInput);
    sources = std::move(names);
    script = {absoluteName(sources.front()), options.queryPath()};
    for (const CString& further : std::span(sources).subspan(1))
        script.furtherSources.push_back(absoluteName(further));
    if (fullMessage() && message->queryDescriptor()->readsCatalogs())
        script.catalogs = absoluteSourcesIn(options.queryCatalogs());
    const WaitCursor wait;
    // The boxes of one import are one series, which the user can hide.
    const ImportMessages together;
    message->wantReport();
    int isRead = 0;
    sheet.runLong([&] { isRead = readSources(); });
    if (!isRead)
        return false;
    setCurrentFolder(folderCWD);
    return true;
}

// Runs in the thread of the long work. The window shows a page meanwhile that reads neither the importer nor the
// members set here.
int WizardRun::readSources()
{
    std::vector<CString> files = sources;
    FullMessage* const full = fullMessage();
    if (full && full->queryDescriptor()->readsFolders()) {
        files = withoutFolders(sources, full->queryDescriptor(), false);
        full->setName(nameOfSet(sources, files));
        full->setLayout(options.queryLayout());
        full->setCatalogs(withEnvironmentCatalogs(script.catalogs));
    }
    message->setFurtherFiles({files.begin() + 1, files.end()});
    const int isRead = message->parseFile(files.front(), options.queryPath());
    if (!isRead)
        return 0;
    // The source is only looked at again if the full reading might bring more.
    const bool isIncomplete = message->beginEnum() == 0 || message->queryReport().queryTotal(SourceReport::loss) != 0;
    unsupportedConstructs = isIncomplete ? unsupportedByLiteral(files.front()) : CString();
    return isRead;
}

// After a refused logon the user is asked again, with the driver's reason and the user name typed before. Any other
// failure ends the loop, because another logon wouldn't help. The password is wiped when the text goes out of scope.
bool WizardRun::openDatabase()
{
    database.reset(); // closed first, because a source may allow only one connection
    database = std::make_unique<CDatabase>();
    Secret logon;
    for (;;) {
        CString reason;
        try {
            const WaitCursor wait;
            bool isOpen = false;
            sheet.runLong(
                [&] { isOpen = database->Open(dataSourceText(script.source), CDatabase::readOnly, logon.text); },
                nullptr, toUi(script.source));
            if (!isOpen)
                theApp.Error(IDS_SELECT_DATASOURCE, IDS_ERROR_TITLE);
            return isOpen;
        } catch (const CDBException& error) {
            if (!error.isLogonRefused())
                throw namedError(script.source, "opened", error.what());
            reason = error.what();
        }
        // Kept in the script, so that a refused logon need not be typed again, and the command logs on as the same
        // user.
        CString& user = script.sourceUser;
        if (!askForLogon(sheet.activePage(), script.source, reason, user, logon.text))
            return false;
    }
}

void WizardRun::readDatabase(const std::function<void()>& call)
{
    try {
        sheet.runLong(call, nullptr, toUi(script.source));
    } catch (const CDBException& error) {
        throw namedError(script.source, "read", error.what());
    }
}

FullMessage* WizardRun::fullMessage() const
{
    return dynamic_cast<FullMessage*>(message.get());
}

// Creates a full importer, because the current one only knows the literal reading.
CString WizardRun::unsupportedByLiteral(const CString& fileName) const
{
    const std::unique_ptr<const FullMessage> full(fullMessage() ? nullptr : message->queryDescriptor()->createFull());
    return full ? full->unsupportedByLiteral(fileName) : CString();
}
