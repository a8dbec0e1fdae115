#include "Wizard/QELWizard.h"

#include "Base/QELApp.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Registry/ImporterChoice.h"
#include "Import/Registry/SourceSet.h"
#include "Resources/StringTable.h"
#include "Ui/CoverText.h"
#include "Ui/DraggedFiles.h"
#include "Ui/ModalBox.h"
#include "Ui/UiText.h"
#include "Wizard/Run/SourceList.h"
#include "Wizard/WindowLayout.h"
#include "Wizard/Windows/HelpWindow.h"

#include <QDropEvent>
#include <QIcon>

#include <algorithm>
#include <stdexcept>

// Nothing refers to the pictures and help pages by name, so from a library the linker only takes them on demand.
[[maybe_unused]] static const int resources = [] {
    Q_INIT_RESOURCE(wizard);
    return 0;
}();

namespace {

// Returns the row of an importer in the table, which is also that in the list of importers. It must be in the table.
int rowOf(const MsgUIDescriptor* importer)
{
    int row = 0;
    while (g_amud[row] != importer)
        ++row;
    return row;
}

// Returns the importer for a file or for the sources in a folder; `preferred` takes precedence if the folder has a
// source of it. Null if there is none. A folder can hold sources of several kinds; an importer that the user has
// already chosen then decides.
MsgUIDescriptor* importerOf(const CString& name, MsgUIDescriptor* preferred)
{
    if (!isFolder(name))
        return importerFor(name);
    try {
        if (!preferred) {
            MsgUIDescriptor& importer = importerForFolder(name, false);
            return importer.readsFolders() ? &importer : nullptr;
        }
        withoutFolders({name}, preferred, false); // throws if the folder has no source of it
        return preferred;
    } catch (const std::runtime_error&) {
        return preferred ? importerOf(name, nullptr) : nullptr;
    }
}

// Returns why no importer takes a file or folder, and what to do. The user may know the kind of the source better, so
// the importer can be chosen first.
CString noImporterReason(const CString& name)
{
    if (isFolder(name))
        return "it contains no sources, or sources of several kinds. Choose their importer in the list, press "
               "Next, and choose the folder or its files there.";
    const FileCause cause = testReadable(name);
    const std::string_view foreign = foreignAdvice(name);
    if (cause != FileCause::none)
        return inWords(name, cause);
    return foreign.empty() ? "no importer recognises its name or contents. If it is a source, choose its importer in "
                             "the list, press Next, and enter its name there."
                           : CString(foreign);
}

// Does nothing if there are none.
void reportIgnoredFiles(const std::vector<CString>& files, bool readsSeveral)
{
    if (files.empty())
        return;
    CString text =
        readsSeveral ? "Files of one kind are imported together. Ignored:" : "One file is imported at a time. Ignored:";
    for (const CString& file : files)
        text += "\n" + file;
    theApp.Error(text, IDS_ERROR_TITLE);
}

} // namespace

QELWizard::QELWizard(UINT captionId, CWnd* parent, UINT startPage, HBITMAP watermark, HPALETTE, HBITMAP header) :
    WizardSheet(loadText(captionId), parent, startPage, watermark, header), WizardRun(static_cast<WizardSheet&>(*this))
{
    setObjectName("QELWizard");
    // Pictures have their resource numbers as names.
    setWindowIcon(QIcon(":/1027"));
    setAcceptDrops(true);
    setMainWindow(this);
    options.getValues();
    titleFont = coverFont("Comic Sans MS", 20);
    // The order matters: a handler's result of 0 leads to the neighbouring page.
    WizardPage* const pages[] = {&firstPage,     &sourceTypePage,   &dataSourcePage, &databaseTablePage,
                                 &sourcePage,    &editPage,         &outputPage,     &outputFile,
                                 &loginToBroker, &createResultPage, &finishPage};
    for (WizardPage* page : pages)
        AddPage(*page);
    if (options.queryHideWelcome() != 0)
        setStartPage(1);
}

// The engine must not ask this window for its database any more.
QELWizard::~QELWizard()
{
    setMainWindow(nullptr);
}

// `shown` is the importer of the input page if that is current, so that a file dropped there only changes the name. The
// importer's row is set before its page is shown, because that page then selects the row. show() comes first, because
// the sheet has no current page before.
void QELWizard::openFiles(const QStringList& files)
{
    MsgUIDescriptor* const shown = activePage() == &sourcePage ? message->queryDescriptor() : nullptr;
    MsgUIDescriptor* const preferred = shown && shown->readsFolders() ? shown : nullptr;
    const CString first = absoluteName(fromUi(files.front()));
    MsgUIDescriptor* const importer = importerOf(first, preferred);
    const bool isOneOfMany = importer && readsSeveral(*importer);
    std::vector<CString> together = {first}, aside;
    for (const QString& file : files.mid(1)) {
        const CString name = absoluteName(fromUi(file));
        (isOneOfMany && importerOf(name, importer) == importer ? together : aside).push_back(name);
    }
    if (importer == nullptr) {
        theApp.Error(loadText(IDS_SELECT_SOURCE), IDS_ERROR_TITLE, first + ": " + noImporterReason(first));
    } else {
        show();
        if (shown != importer) {
            options.setLastImporterSel(rowOf(importer));
            showPage(IDD_SOURCE_TYPE);
            goNext();
        }
        sourcePage.takeFile(textOfSources(together));
    }
    reportIgnoredFiles(aside, isOneOfMany);
}

// Without an owner, the window doesn't get the wizard's icon by itself.
HelpWindow& QELWizard::helpWindow()
{
    if (!help) {
        help = std::make_unique<HelpWindow>();
        help->setWindowIcon(windowIcon());
    }
    return *help;
}

// The lists of a page exist from now on, so their widths can be restored.
void QELWizard::OnPageMade(WizardPage& page)
{
    restoreWidths(page);
}

// Accepts files on the pages before the list of types.
void QELWizard::dragEnterEvent(QDragEnterEvent* event)
{
    constexpr int pages[] = {IDD_FIRST, IDD_SOURCE_TYPE, IDD_DATA_SOURCE, IDD_DATABASE_TABLE, IDD_SOURCE};
    const bool before = std::find(std::begin(pages), std::end(pages), activePage()->queryDialogId()) != std::end(pages);
    if (before && !draggedFiles(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

// Only called after dragEnterEvent() has accepted the files.
void QELWizard::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    openFiles(draggedFiles(*event->mimeData()));
}
