#include "SourcePage.h"

#include "Platform/Files/File.h"
#include "Platform/Ui/FileDialog.h"
#include "Platform/Ui/ModalBox.h"
#include "Platform/Ui/WaitCursor.h"
#include "QELWizard.h"
#include "Resources/StringTable.h"

namespace {

// A filter's pattern has the id that follows its label's.
constexpr UINT kFilterLabels[] = {IDS_FILTER_ALL_TYPES, IDS_FILTER_DTD, IDS_FILTER_XML, IDS_FILTER_SCHEMA,
                                  IDS_FILTER_ALL_FILES};

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
    std::vector<FileFilter> filters;
    for (const UINT label : kFilterLabels)
        filters.push_back({loadText(label), loadText(label + 1)});
    return chooseFileToOpen(this, {loadText(IDS_SELECT_SOURCE), filters, wizard->options.queryInputFolder(), fileName});
}

void SourcePage::setFolder(const CString& folder)
{
    wizard->options.setInputFolder(folder);
}

CString SourcePage::enterFolder()
{
    return wizard->setCurrentFolder(QELWizard::folderInput);
}
