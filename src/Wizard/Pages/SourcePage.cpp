#include "Wizard/Pages/SourcePage.h"

#include "Base/MessageBox.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Full/FullReadingHint.h"
#include "Resources/StringTable.h"
#include "Ui/FileDialog.h"
#include "Wizard/Run/WizardRun.h"

#include <QCheckBox>

#include <algorithm>

namespace {

// All types, each importer's own kind once, all files.
std::vector<FileFilter> fileFilters()
{
    std::vector<UINT> labels = {IDS_FILTER_ALL_TYPES};
    for (MsgUIDescriptor** importer = g_amud; *importer; ++importer) {
        const UINT label = (*importer)->querySource().filterId;
        if (label != 0 && std::find(labels.begin(), labels.end(), label) == labels.end())
            labels.push_back(label);
    }
    labels.push_back(IDS_FILTER_ALL_FILES);
    std::vector<FileFilter> filters;
    for (const UINT label : labels)
        filters.push_back({loadText(label), loadText(label + 1)}); // a pattern's id follows its label's
    return filters;
}

// While one lives, an error that comes of what the literal reading doesn't know names the way out in its details.
class WayOut
{
public:
    WayOut(const WizardRun& wizard, const CString& fileName) : wizard(wizard), fileName(fileName) {}
    ~WayOut() { setMessageBoxHandler(before); }
    WayOut(const WayOut&) = delete;
    WayOut& operator=(const WayOut&) = delete;

private:
    void show(const CString& text, const CString& title) const
    {
        CString details = queryMessageDetails();
        const CString uses = isErrorOfLiteralReading(text) ? wizard.usesOfFull(fileName) : CString();
        if (!uses.empty())
            details = "Read it in full, by the check box on this page: it uses " + uses + ".";
        const MessageBoxHandler own = setMessageBoxHandler(before);
        showMessageBox(text, title, details);
        setMessageBoxHandler(own);
    }

    const WizardRun& wizard;
    CString fileName;
    MessageBoxHandler before =
        setMessageBoxHandler([this](const CString& text, const CString& title) { show(text, title); });
};

} // namespace

SourcePage::SourcePage() : FilePage(IDD_SOURCE, "Typeforge - Select source", IDS_SOURCE_TITLE, IDS_SOURCE_SUBTITLE) {}

void SourcePage::OnInitDialog()
{
    FilePage::OnInitDialog();
    fullCheck = withId(IDC_FULL_READING, new QCheckBox("Read in &full (namespaces, entities, derived types)"));
    fullCheck->setChecked(wizard->options.queryFullReading() != 0);
    addRow(fullCheck);
}

void SourcePage::OnSetActive()
{
    FilePage::OnSetActive();
    fullCheck->setVisible(wizard->message->queryDescriptor()->hasFull());
}

/// Changes the importer for the one of its row that reads as it was asked for.
void SourcePage::chooseReading()
{
    const MsgUIDescriptor& row = *wizard->message->queryDescriptor();
    if (!row.hasFull())
        return;
    wizard->options.setFullReading(fullCheck->isChecked());
    if (fullCheck->isChecked())
        wizard->message.reset(row.createFull());
    else if (wizard->fullMessage())
        wizard->message.reset(row.create());
}

LRESULT SourcePage::OnWizardNext()
{
    UpdateData(true);
    if (const FileCause cause = testReadable(fileName); cause != FileCause::none)
        return stay(IDS_SELECT_SOURCE, inWords(fileName, cause));
    wizard->options.addInputFile(fileName);
    chooseReading();
    const WayOut hint(*wizard, fileName);
    if (!wizard->importFile(fileName))
        return -1; // the importer has said why
    wizard->options.setEditBack(IDD_SOURCE);
    return IDD_EDIT;
}

void SourcePage::fillFiles(QComboBox& combo)
{
    wizard->options.fillInputFile(combo);
}

CString SourcePage::chooseFile()
{
    return chooseFileToOpen(this,
                            {loadText(IDS_SELECT_SOURCE), fileFilters(), wizard->options.queryInputFolder(), fileName});
}

void SourcePage::OnDrop(const QStringList& files)
{
    wizard->openFiles(files);
}

void SourcePage::setFolder(const CString& folder)
{
    wizard->options.setInputFolder(folder);
}

CString SourcePage::enterFolder()
{
    return wizard->setCurrentFolder(WizardRun::folderInput);
}
