#include "Base/MessageBox.h"
#include "Base/QELApp.h"
#include "Resources/DialogIds.h"
#include "Ui/ModalBox.h"
#include "Wizard/QELWizard.h"
#include "Wizard/WindowLayout.h"
#include "Wizard/Windows/HelpWindow.h"

#include <QGuiApplication>
#include <QScreen>

#include <vector>

// The two operations of the application object that need a window. They are defined here, so that programs without the
// wizard link without Qt.
namespace {

// The help topic of a page. The topics are numbered by HelpWindow.
struct HelpId
{
    int dialogId;
    int topic;
};

// One row for each page. The last row has the dialog id 0 and the default topic, 0.
constexpr HelpId helpIds[] = {
    {IDD_FIRST, 1},       {IDD_CREATE_RESULT, 2}, {IDD_DATA_SOURCE, 3},  {IDD_DATABASE_TABLE, 4},
    {IDD_EDIT, 5},        {IDD_FINISH, 6},        {IDD_LOGIN, 7},        {IDD_OUTPUT, 8},
    {IDD_OUTPUT_FILE, 9}, {IDD_SOURCE, 10},       {IDD_SOURCE_TYPE, 11}, {0, 0},
};

// Returns whether the screen has fewer than 9 bits per pixel, so that it needs pictures of few colours; false if
// unknown.
bool isLowColour()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen != nullptr && screen->depth() < 9;
}

} // namespace

// Settings are only stored if the user finishes the wizard: Cancel discards all choices of the run. The size of the
// window is restored before the wizard is first shown, which keeps it. Files are opened before the event loop starts,
// which shows the wizard at its input page at once.
BOOL CQELApp::InitInstance()
{
    const bool lowColour = isLowColour();
    const HBITMAP watermark = lowColour ? IDB_WATERMARK_LOW_COLOUR : IDB_WATERMARK;
    const HBITMAP header = lowColour ? IDB_HEADER_LOW_COLOUR : IDB_HEADER;
    std::vector<CString> early; // messages about the settings, which are read before the wizard can show a box
    const MessageBoxHandler before =
        setMessageBoxHandler([&early](const CString& text, const CString&) { early.push_back(text); });
    QELWizard wizard(IDS_TITLE, nullptr, 0, watermark, nullptr, header);
    setMessageBoxHandler(ModalBox(wizard));
    for (const CString& text : early)
        Error(text, IDS_ERROR_TITLE);
    restoreGeometry(wizard);
    if (const QStringList files = QCoreApplication::arguments().mid(1); !files.isEmpty())
        wizard.openFiles(files);
    if (wizard.DoModal() == WizardSheet::resultOk) {
        wizard.options.flushValues();
        storeLayout(wizard);
    }
    setMessageBoxHandler(before);
    return 0;
}

// The help window belongs to the wizard and is destroyed with it.
void CQELApp::WinHelp(DWORD data, UINT command)
{
    if (command != kContextHelp)
        return;
    const HelpId* row = helpIds;
    while (row->dialogId != 0 && row->dialogId != int(data & 0xFFFF))
        ++row;
    dynamic_cast<QELWizard&>(*mainWindow()).helpWindow().showTopic(row->topic);
}
