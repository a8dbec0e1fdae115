#include "QELWizard.h"

#include "Platform/Ui/CoverText.h"
#include "Platform/Ui/ModalBox.h"
#include "Platform/Ui/WaitCursor.h"
#include "Resources/StringTable.h"
#include "Utils/QELApp.h"

#include <QIcon>

#include <unistd.h>

// Nothing refers to the pictures and help pages by name, so out of a library they are only linked in when asked for.
[[maybe_unused]] static const int resources = [] {
    Q_INIT_RESOURCE(wizard);
    return 0;
}();

QELWizard::QELWizard(UINT captionId, CWnd* parent, UINT startPage, HBITMAP watermark, HPALETTE, HBITMAP header) :
    WizardSheet(loadText(captionId), parent, startPage, watermark, header)
{
    setObjectName("QELWizard");
    setWindowIcon(QIcon(":/1027"));
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
    const WaitCursor wait;
    const ImportMessages together;
    if (!message->parseFile(fileName, options.queryPath()))
        return false;
    setCurrentFolder(folderCWD);
    return true;
}

FullMessage* QELWizard::fullMessage() const
{
    return dynamic_cast<FullMessage*>(message.get());
}

void QELWizard::OnHelp(int dialogId)
{
    constexpr UINT contextHelp = 1;
    theApp.WinHelp(static_cast<DWORD>(dialogId), contextHelp);
}

void QELWizard::OnPageError(const std::exception& error)
{
    theApp.Error(error.what(), IDS_ERROR_TITLE);
}
