#include "Wizard/QELWizard.h"

#include "Base/QELApp.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Registry/ImporterChoice.h"
#include "Resources/StringTable.h"
#include "Ui/CoverText.h"
#include "Ui/DraggedFiles.h"
#include "Ui/ModalBox.h"
#include "Ui/UiText.h"
#include "Wizard/WindowLayout.h"

#include <QDropEvent>
#include <QIcon>

#include <algorithm>

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
    WizardSheet(loadText(captionId), parent, startPage, watermark, header), WizardRun(static_cast<WizardSheet&>(*this))
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

void QELWizard::openFiles(const QStringList& files)
{
    const CString fileName = absoluteName(fromUi(files.front()));
    MsgUIDescriptor* const importer = importerFor(fileName);
    if (importer == nullptr) {
        const FileCause cause = testReadable(fileName);
        const std::string_view foreign = foreignAdvice(fileName);
        const CString reason = cause != FileCause::none ? inWords(fileName, cause)
                               : foreign.empty()        ? "No source that an importer knows"
                                                        : CString(foreign);
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
