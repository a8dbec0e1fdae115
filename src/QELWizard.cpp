#include "QELWizard.h"

#include "DataSourceLogon.h"
#include "Formats/ImporterChoice.h"
#include "Platform/Database/ConnectString.h"
#include "Platform/Files/File.h"
#include "Platform/Secret.h"
#include "Platform/Ui/CoverText.h"
#include "Platform/Ui/DraggedFiles.h"
#include "Platform/Ui/ModalBox.h"
#include "Platform/Ui/UiText.h"
#include "Platform/Ui/WaitCursor.h"
#include "Resources/StringTable.h"
#include "Utils/FileMessage.h"
#include "Utils/QELApp.h"
#include "WindowLayout.h"

#include <QDropEvent>
#include <QIcon>

#include <algorithm>
#include <unistd.h>

// Nothing refers to the pictures and help pages by name, so out of a library they are only linked in when asked for.
[[maybe_unused]] static const int resources = [] {
    Q_INIT_RESOURCE(wizard);
    return 0;
}();

namespace {

int rowOf(const MsgUIDescriptor* importer)
{
    int row = 0;
    while (g_amud[row] != importer)
        ++row;
    return row;
}

} // namespace

QELWizard::QELWizard(UINT captionId, CWnd* parent, UINT startPage, HBITMAP watermark, HPALETTE, HBITMAP header) :
    WizardSheet(loadText(captionId), parent, startPage, watermark, header)
{
    setObjectName("QELWizard");
    setWindowIcon(QIcon(":/1027"));
    setAcceptDrops(true);
    setMainWindow(this);
    options.getValues();
    titleFont = coverFont("Comic Sans MS", 20);
    // The order is the sheet's: an answer of 0 leads to the neighbour.
    WizardPage* const pages[] = {&firstPage,     &sourceTypePage,   &dataSourcePage, &databaseTablePage,
                                 &sourcePage,    &editPage,         &outputPage,     &outputFile,
                                 &loginToBroker, &createResultPage, &finishPage};
    for (WizardPage* page : pages)
        AddPage(*page);
    if (options.queryHideWelcome() != 0)
        setStartPage(1);
}

QELWizard::~QELWizard()
{
    setMainWindow(nullptr);
}

CString QELWizard::setCurrentFolder(WhichFolder which)
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

bool QELWizard::importFile(const CString& fileName)
{
    setCurrentFolder(folderInput);
    script = {absoluteName(fileName), options.queryPath()};
    const WaitCursor wait;
    const ImportMessages together;
    message->wantReport();
    int isRead = 0;
    runLong([&] { isRead = message->parseFile(fileName, options.queryPath()); });
    if (!isRead)
        return false;
    setCurrentFolder(folderCWD);
    return true;
}

bool QELWizard::openDatabase()
{
    database.reset(); // closed before the next one opens: a source may allow one connection only
    database = std::make_unique<CDatabase>();
    Secret logon;
    for (;;) {
        CString reason;
        try {
            const WaitCursor wait;
            bool isOpen = false;
            runLong([&] { isOpen = database->Open(dataSourceText(script.source), CDatabase::readOnly, logon.text); });
            if (!isOpen)
                theApp.Error(IDS_SELECT_DATASOURCE, IDS_ERROR_TITLE);
            return isOpen;
        } catch (const CDBException& error) {
            if (!error.isLogonRefused())
                throw;
            reason = error.what();
        }
        CString& user = script.sourceUser;
        if (!DataSourceLogon(activePage(), script.source, reason, user).ask(user, logon.text))
            return false;
    }
}

FullMessage* QELWizard::fullMessage() const
{
    return dynamic_cast<FullMessage*>(message.get());
}

CString QELWizard::usesOfFull(const CString& fileName) const
{
    const std::unique_ptr<const FullMessage> full(fullMessage() ? nullptr : message->queryDescriptor()->createFull());
    return full ? full->queryUses(fileName) : CString();
}

void QELWizard::openFiles(const QStringList& files)
{
    const CString fileName = absoluteName(fromUi(files.front()));
    MsgUIDescriptor* const importer = importerFor(fileName);
    if (importer == nullptr) {
        const FileCause cause = testReadable(fileName);
        const CString reason = cause == FileCause::none ? "No source that an importer knows" : inWords(fileName, cause);
        theApp.Error(loadText(IDS_SELECT_SOURCE), IDS_ERROR_TITLE, fileName + ": " + reason);
    } else {
        show();
        if (activePage() != &sourcePage || message->queryDescriptor() != importer) {
            options.setLastImporterSel(rowOf(importer));
            showPage(IDD_SOURCE_TYPE);
            next();
        }
        sourcePage.takeFile(fileName);
    }
    if (files.size() > 1)
        theApp.Error("One file is imported at a time. Left aside:\n" + fromUi(files.mid(1).join('\n')),
                     IDS_ERROR_TITLE);
}

void QELWizard::OnPageMade(WizardPage& page)
{
    restoreWidths(page);
}

// Files are taken on the pages before the types.
void QELWizard::dragEnterEvent(QDragEnterEvent* event)
{
    constexpr int pages[] = {IDD_FIRST, IDD_SOURCE_TYPE, IDD_DATA_SOURCE, IDD_DATABASE_TABLE, IDD_SOURCE};
    const bool before = std::find(std::begin(pages), std::end(pages), activePage()->queryDialogId()) != std::end(pages);
    if (before && !draggedFiles(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void QELWizard::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    openFiles(draggedFiles(*event->mimeData()));
}

void QELWizard::OnHelp(int dialogId)
{
    constexpr UINT contextHelp = 1;
    theApp.WinHelp(static_cast<DWORD>(dialogId), contextHelp);
}

void QELWizard::OnPageError(const std::exception& error)
{
    theApp.Error(wordsOf(error), IDS_ERROR_TITLE);
}
