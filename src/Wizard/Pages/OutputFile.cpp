#include "Wizard/Pages/OutputFile.h"

#include "Files/AtomicFile.h"
#include "Files/FileMessage.h"
#include "Resources/StringTable.h"
#include "Ui/FileDialog.h"
#include "Ui/WaitCursor.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

OutputFile::OutputFile() :
    FilePage(IDD_OUTPUT_FILE, "Typeforge - Select output file", IDS_OUTPUT_FILE_TITLE, IDS_OUTPUT_FILE_SUBTITLE)
{}

LRESULT OutputFile::OnWizardNext()
{
    UpdateData(true);
    wizard->options.addOutputFile(fileName);
    const WaitCursor wait;
    FileCause cause = FileCause::none;
    sheet()->runLong([&] {
        AtomicFile file(fileName); // an older file stays as it is until the new one is whole
        if (file.queryCause() == FileCause::none)
            wizard->message->writeXML([&file](std::string_view text) { file.write(text); });
        cause = file.commit();
    });
    if (cause != FileCause::none)
        return stay(cantOpen(fileName, cause), inWords(fileName, cause));
    wizard->script.output = absoluteName(fileName);
    wizard->setCurrentFolder(WizardRun::folderCWD);
    return IDD_FINISH;
}

LRESULT OutputFile::OnWizardBack()
{
    wizard->setCurrentFolder(WizardRun::folderCWD);
    return IDD_OUTPUT;
}

void OutputFile::fillFiles(QComboBox& combo)
{
    wizard->options.fillOutputFile(combo);
}

CString OutputFile::chooseFile()
{
    return chooseFileToSave(this, {loadText(IDS_SELECT_DESTINATION),
                                   {{loadText(IDS_FILTER_ALL_FILES), loadText(IDS_PATTERN_ALL_FILES)}},
                                   wizard->options.queryOutputFolder(),
                                   fileName});
}

void OutputFile::setFolder(const CString& folder)
{
    wizard->options.setOutputFolder(folder);
}

CString OutputFile::enterFolder()
{
    return wizard->setCurrentFolder(WizardRun::folderOutput);
}
