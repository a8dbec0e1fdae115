#include "Wizard/Pages/OutputFile.h"

#include "Files/AtomicFile.h"
#include "Files/FileMessage.h"
#include "Files/SameFile.h"
#include "Import/Registry/ImporterChoice.h"
#include "Import/Registry/SourceSet.h"
#include "Resources/StringTable.h"
#include "Ui/FileDialog.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Ui/WaitCursor.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/SourceList.h"
#include "Wizard/Run/WizardRun.h"

#include <QComboBox>
#include <QDateTime>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace {

// Returns the suggested name: beside the source, or for a data source in the folder of the last output. A name of a
// data source may contain a slash.
CString outputNameFor(const MsgBase& message, CString source)
{
    const CString ending = "-types.xml";
    if (message.queryDescriptor()->querySource().readsTables) {
        std::ranges::replace(source, '/', '_');
        return source + ending;
    }
    // For a folder as the source.
    while (source.ends_with('/'))
        source.pop_back();
    const std::filesystem::path path(source);
    return (path.parent_path() / (path.stem().string() + ending)).string();
}

// Returns whether the types were read from this file, alone or with others. Folders are listed again, because their
// files are not stored.
bool isSource(const CString& fileName, const WizardRun& wizard)
{
    const MsgUIDescriptor& importer = *wizard.message->queryDescriptor();
    if (importer.querySource().readsTables)
        return false;
    std::vector<CString> sources = wizard.script.furtherSources;
    sources.push_back(wizard.script.source);
    try {
        return std::ranges::any_of(withoutFolders(sources, &importer, false),
                                   [&](const CString& source) { return isSameFile(source, fileName); });
    } catch (const std::runtime_error&) {
        return false; // a folder that doesn't exist any more
    }
}

// Describes the file or folder of this name, and says that a file will be replaced; "" if there is none. Reads the
// beginning of the file, to tell types written earlier from other files. A file of today is shown with its time alone.
QString stateInWords(const CString& fileName, const WizardRun& wizard)
{
    const QFileInfo file(toUi(fileName));
    if (fileName.empty() || !file.exists())
        return {};
    if (file.isDir())
        return "This is a folder. Add the name of a file.";
    const QDateTime time = file.lastModified();
    const QString day = time.date() == QDate::currentDate() ? QString() : time.date().toString(Qt::ISODate) + ' ';
    const QString words = "The file exists, " + QLocale().formattedDataSize(file.size(), 1, QLocale::DataSizeSIFormat) +
                          ", of " + day + time.time().toString("HH:mm") + "; it ";
    const MsgUIDescriptor* const importer = importerFor(fileName);
    const bool isTypes = importer && importer->querySource().namesFolders;
    return words + (isTypes ? "will be replaced." : "is not a type document, and will be replaced.") +
           (isSource(fileName, wizard) ? " It is the source of these types; to keep it, choose another name." : "");
}

} // namespace

OutputFile::OutputFile() :
    FilePage(IDD_OUTPUT_FILE, "Typeforge - Select output file", IDS_OUTPUT_FILE_TITLE, IDS_OUTPUT_FILE_SUBTITLE)
{}

void OutputFile::OnInitDialog()
{
    FilePage::OnInitDialog();
    wizard->options.fillOutputFile(combo());
    state = withId(IDC_OUTPUT_STATE, plainLabel());
    state->setWordWrap(true);
    state->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    addRow(state, true, 1);
    delay.setSingleShot(true);
    delay.setInterval(150);
    connect(&delay, &QTimer::timeout, this, &OutputFile::showState);
    connect(&combo(), &QComboBox::editTextChanged, &delay, qOverload<>(&QTimer::start));
}

void OutputFile::OnSetActive()
{
    FilePage::OnSetActive();
    suggest();
    showState();
}

// Suggests a name, unless the field has a recent or a typed one.
void OutputFile::suggest()
{
    UpdateData(true);
    if (fileName != suggested)
        return;
    suggested = outputNameFor(*wizard->message, wizard->script.source);
    fileName = suggested;
    UpdateData(false);
}

// Stops the timer, because the state is current afterwards.
void OutputFile::showState()
{
    delay.stop();
    UpdateData(true);
    state->setText(stateInWords(fileName, *wizard));
}

// Writes the document in the work's thread. The error is that of the opening or of any later step. An empty name fails
// like any other that can't be opened, but the page knows a better reason.
LRESULT OutputFile::OnWizardNext()
{
    showState(); // now, because the timer would read the name while the work below uses it
    wizard->options.addOutputFile(fileName);
    const WaitCursor wait;
    int error = 0;
    sheet()->runLong([&] {
        AtomicFile file(fileName); // keeps an older file until the new one is complete
        if (file.queryError() == 0)
            wizard->message->writeXML([&file](std::string_view text) { file.write(text); });
        error = file.commit();
    });
    if (error != 0)
        return stayAtFile(cantOpen(fileName, fileCauseOf(error)),
                          fileName.empty() ? "The name of the file is missing. Type it, or press Browse."
                                           : inWords(error));
    wizard->script.output = absoluteName(fileName);
    wizard->setCurrentFolder(WizardRun::folderCWD);
    return IDD_FINISH;
}

LRESULT OutputFile::OnWizardBack()
{
    wizard->setCurrentFolder(WizardRun::folderCWD);
    return IDD_OUTPUT;
}

CString OutputFile::chooseFile()
{
    return chooseFileToSave(this, {loadText(IDS_SELECT_DESTINATION),
                                   {{loadText(IDS_FILTER_ALL_FILES), loadText(IDS_PATTERN_ALL_FILES)}},
                                   wizard->options.queryOutputFolder(),
                                   fileName});
}
