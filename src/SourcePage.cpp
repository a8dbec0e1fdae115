#include "SourcePage.h"

#include "Platform/Files/File.h"
#include "Platform/Ui/FileDialog.h"
#include "Platform/Ui/ModalBox.h"
#include "Platform/Ui/WaitCursor.h"
#include "QELWizard.h"
#include "Resources/StringTable.h"

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

} // namespace

SourcePage::SourcePage() : FilePage(IDD_SOURCE, "Typeforge - Select source", IDS_SOURCE_TITLE, IDS_SOURCE_SUBTITLE) {}

LRESULT SourcePage::OnWizardNext()
{
    UpdateData(true);
    if (testReadable(fileName) != FileCause::none)
        return stay(IDS_SELECT_SOURCE);
    wizard->options.addInputFile(fileName);
    const WaitCursor wait;
    const ImportMessages together;
    if (!wizard->message->parseFile(fileName, wizard->options.queryPath()))
        return -1; // the importer has said why
    wizard->setCurrentFolder(QELWizard::folderCWD);
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

void SourcePage::setFolder(const CString& folder)
{
    wizard->options.setInputFolder(folder);
}

CString SourcePage::enterFolder()
{
    return wizard->setCurrentFolder(QELWizard::folderInput);
}
