#include "Wizard/Pages/SourcePage.h"

#include "Base/QELApp.h"
#include "Base/SourceFault.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Full/Catalogs.h"
#include "Import/Full/FullReadingHint.h"
#include "Resources/StringTable.h"
#include "Ui/Announce.h"
#include "Ui/ComboBox.h"
#include "Ui/FileDialog.h"
#include "Ui/PathCompleter.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Wizard/Pages/PreviewPane.h"
#include "Wizard/Run/SourceList.h"
#include "Wizard/Run/WizardRun.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>

#include <algorithm>

// The field holds one name, or several in quotes; sourcesIn() takes it apart wherever names are needed. The page before
// has chosen the importer. The check box decides between its two readings only on Next (chooseReading()), while the
// preview counts both. Errors that are known without reading the source are shown before the import (sourceError()).
// Errors of the import come through the importer's error handler.
namespace {

// Returns whether the dialog's first choice lists files of this kind. "All message types" are DTD, XML and XSD.
bool isMessageType(UINT label)
{
    const CString patterns = loadText(label + 1); // the pattern's id follows the label's
    return CString(loadText(IDS_PATTERN_ALL_TYPES)).find(patterns.substr(0, patterns.find(';'))) != CString::npos;
}

// Returns the file types: all types, each importer's own kind once, all files. Importers of the same kind of file share
// a label. The dialog starts with the first one, which lists files of the chosen importer.
std::vector<FileFilter> fileFilters(const MsgUIDescriptor& chosen)
{
    std::vector<UINT> labels = {IDS_FILTER_ALL_TYPES};
    if (const UINT own = chosen.querySource().filterId; !isMessageType(own))
        labels.insert(labels.begin(), own);
    for (MsgUIDescriptor** importer = g_amud; *importer; ++importer) {
        const UINT label = (*importer)->querySource().filterId;
        if (label != 0 && std::find(labels.begin(), labels.end(), label) == labels.end())
            labels.push_back(label);
    }
    labels.push_back(IDS_FILTER_ALL_FILES);
    std::vector<FileFilter> filters;
    for (const UINT label : labels)
        filters.push_back({loadText(label), loadText(label + 1)});
    return filters;
}

// Returns the first catalogue that can't be read, with the reason; "" if all can.
CString catalogError(const std::vector<CString>& names)
{
    for (const CString& name : names)
        if (const FileCause cause = testReadable(name); cause != FileCause::none)
            return "XML catalogue " + name + ": " + inWords(name, cause);
    return {};
}

// Returns the first catalogue of the environment that can't be read, with the reason, and the number of others; "" if
// all can.
CString environmentCatalogError()
{
    const std::vector<CString> errors = environmentCatalogErrors();
    if (errors.size() < 2)
        return errors.empty() ? "" : errors.front();
    return errors.front() + ", and " + countInWords(errors.size() - 1, "other", "others");
}

// Returns advice on an error caused by a construct that the literal reading doesn't know; empty for other errors.
// Called in the work's thread, so it reads no controls.
CString fullReadingAdvice(const WizardRun& wizard, const CString& error, const CString& fileName)
{
    const CString unsupported = isErrorOfLiteralReading(error) ? wizard.unsupportedByLiteral(fileName) : CString();
    return unsupported.empty() ? unsupported
                               : "Check \"Read in full\" on this page: the source uses " + unsupported + ".";
}

// Returns a row of a label, its field, which takes the free room, and a button.
QWidget* rowOf(const char* text, QWidget* field, QPushButton* button)
{
    QLabel* label = plainLabel(text);
    label->setBuddy(field);
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(label);
    layout->addWidget(field, 1);
    layout->addWidget(button);
    return row;
}

} // namespace

SourcePage::SourcePage() : FilePage(IDD_SOURCE, "Typeforge - Select source", IDS_SOURCE_TITLE, IDS_SOURCE_SUBTITLE) {}

// The field takes the names of many files, which need more than its default of 32,767 characters.
void SourcePage::OnInitDialog()
{
    FilePage::OnInitDialog();
    wizard->options.fillInputFile(combo());
    combo().lineEdit()->setMaxLength(QELOptions::kMaxSourceSet);
    fullCheck = withId(IDC_FULL_READING, new QCheckBox("Read in &full (namespaces, entities, derived types)"));
    fullCheck->setChecked(wizard->options.queryFullReading() != 0);
    pane = new PreviewPane(fullCheck);
    addRow(pane, true);
    setRow = makeSetRow();
    catalogRow = makeCatalogRow();
    addRow(setRow);
    addRow(catalogRow);
    catalogState = withId(IDC_CATALOG_STATE, plainLabel());
    catalogState->setWordWrap(true); // a long name would widen the window
    addRow(catalogState);
    hint = withId(IDC_HINT, plainLabel());
    addRow(hint);
    connect(fullCheck, &QCheckBox::toggled, this, &SourcePage::showSetRows);
    connect(fullCheck, &QCheckBox::toggled, this, &SourcePage::removeFrame);
    connect(&combo(), &QComboBox::editTextChanged, this, &SourcePage::updatePreview);
    connect(&combo(), &QComboBox::editTextChanged, hint, &QLabel::hide);
}

// Returns the row of controls for a source of several files: the layout of folders, and a button that chooses a folder.
QWidget* SourcePage::makeSetRow()
{
    layoutCombo = withId(IDC_FOLDER_LAYOUT, new ComboBox("Folders of &types:"));
    for (const char* choice : {"by namespace for several files", "by main type", "by namespace"})
        layoutCombo->addItem(choice);
    layoutCombo->setCurrentIndex(static_cast<int>(wizard->options.queryLayout()));
    // Its longest choice would widen the window.
    layoutCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto* folderButton = withId(IDC_CHOOSE_FOLDER, new QPushButton("Read a fo&lder ..."));
    folderButton->setToolTip(plainToolTip("Reads all sources of a folder as one"));
    connect(folderButton, &QPushButton::clicked, this, &SourcePage::pickFolder);
    return rowOf("Folders of &types:", layoutCombo, folderButton);
}

// Returns the row for XML catalogues, which takes names like the field for files.
QWidget* SourcePage::makeCatalogRow()
{
    catalogEdit = withId(IDC_CATALOGS, new QLineEdit(toUi(wizard->options.queryCatalogs())));
    catalogEdit->setAccessibleName("XML catalogues:");
    catalogEdit->setPlaceholderText("none");
    catalogEdit->setMaxLength(QELOptions::kMaxSourceSet);
    catalogEdit->setCompleter(new PathCompleter(*catalogEdit));
    catalogEdit->setAcceptDrops(false); // dropped files are for the page
    connect(catalogEdit, &QLineEdit::textChanged, this, &SourcePage::updatePreview);
    auto* choose = withId(IDC_CHOOSE_CATALOGS, new QPushButton("Choo&se ..."));
    choose->setToolTip(plainToolTip("Chooses catalogues that lead to the documents of the source"));
    connect(choose, &QPushButton::clicked, this, &SourcePage::pickCatalogs);
    return rowOf("XML catalo&gues:", catalogEdit, choose);
}

// The page before may have chosen another importer, so the controls that depend on it are set each time.
void SourcePage::OnSetActive()
{
    FilePage::OnSetActive();
    hint->hide();
    fullCheck->setVisible(wizard->message->queryDescriptor()->hasFull());
    fullCheck->setChecked(wizard->options.queryFullReading() != 0);
    catalogState->setText(toUi(environmentCatalogError()));
    showSetRows();
    updatePreview();
}

// Returns whether the chosen reading takes several files and folders as one source.
bool SourcePage::takesFolders() const
{
    const MsgUIDescriptor& row = *wizard->message->queryDescriptor();
    return row.readsFolders() && (!row.hasFull() || fullCheck->isChecked());
}

// Shows exactly the choices that apply to the chosen reading, so that none applies while it is hidden.
void SourcePage::showSetRows()
{
    setRow->setVisible(takesFolders());
    catalogRow->setVisible(takesFolders() && wizard->message->queryDescriptor()->readsCatalogs());
    catalogState->setVisible(!catalogRow->isHidden() && !catalogState->text().isEmpty());
}

// A preview would only take time when its page is not shown. Spontaneous hiding, as by minimising, keeps it.
void SourcePage::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous() && pane)
        pane->stop();
}

// Previews the named source. Shows nothing if no source is named. Names are made absolute here, because the preview's
// thread must not depend on the current folder, which pages change.
void SourcePage::updatePreview()
{
    if (!isVisible())
        return;
    UpdateData(true);
    pane->showSource({wizard->message->queryDescriptor(), absoluteSourcesIn(fileName), wizard->options.queryPath(),
                      absoluteSourcesIn(fromUi(catalogEdit->text()))});
}

// Stores the choices and switches to the reading that the check box selects. A full importer is always created anew, a
// literal one is kept.
void SourcePage::chooseReading()
{
    const MsgUIDescriptor& row = *wizard->message->queryDescriptor();
    if (row.readsFolders())
        wizard->options.setLayout(static_cast<FullMessage::Layout>(layoutCombo->currentIndex()));
    wizard->options.setCatalogs(fromUi(catalogEdit->text()));
    if (!row.hasFull())
        return;
    wizard->options.setFullReading(fullCheck->isChecked());
    if (fullCheck->isChecked())
        wizard->message.reset(row.createFull());
    else if (wizard->fullMessage())
        wizard->message.reset(row.create());
}

// Returns why these sources can't be imported with the current choices; "" if they can. Checked before the import, so
// that the error is about the field, and the page can mark it.
CString SourcePage::sourceError(const std::vector<CString>& names) const
{
    if (names.front().empty())
        return "The name of the file is missing. Type it, or press Browse.";
    for (const CString& name : names) {
        if (isFolder(name) && !takesFolders())
            return wizard->message->queryDescriptor()->readsFolders()
                       ? "A folder can be read only in full. Check \"Read in full\", or choose a file."
                       : "This is a folder. Choose a file.";
        const FileCause cause = testReadable(name);
        if (cause != FileCause::none && !(takesFolders() && isFolder(name)))
            return (names.size() > 1 ? name + ": " : CString()) + inWords(name, cause);
    }
    if (names.size() == 1 || takesFolders())
        return {};
    if (wizard->message->queryDescriptor()->hasFull())
        return "Several files can be read together only in full. Check \"Read in full\", or choose one file.";
    return wizard->message->setFurtherFiles({}) ? "" : "This importer reads one file at a time. Choose one of them.";
}

// The preview ends first, so that it doesn't compete with the import; it starts again if the page stays.
LRESULT SourcePage::OnWizardNext()
{
    UpdateData(true);
    hint->hide();
    pane->stop();
    const auto restartPreview = qScopeGuard([this] { updatePreview(); });
    const std::vector<CString> names = sourcesIn(fileName);
    if (const CString error = sourceError(names); !error.empty())
        return stayAtFile(loadText(IDS_SELECT_SOURCE), error);
    const CString faultyCatalog =
        catalogRow->isHidden() ? CString() : catalogError(absoluteSourcesIn(fromUi(catalogEdit->text())));
    if (!faultyCatalog.empty()) {
        catalogEdit->setFocus();
        return stay(IDS_SELECT_SOURCE, faultyCatalog);
    }
    const bool isSet = names.size() > 1 || isFolder(names.front());
    wizard->options.setSetLast(isSet);
    if (isSet)
        wizard->options.setSourceSet(fileName);
    else
        wizard->options.addInputFile(fileName);
    chooseReading();
    // For this import only: the advice is about this page, and the page of types can import again.
    bool isReported = false;
    wizard->message->setErrorHandler([&, file = names.front()](const CString& text, const SourceFault& fault) {
        isReported = true;
        theApp.Error(text, IDS_ERROR_TITLE, fault, fullReadingAdvice(*wizard, text, file));
    });
    const auto forget = qScopeGuard([this] { wizard->message->setErrorHandler({}); });
    if (!wizard->importSources(names)) {
        if (!isReported) // a document without types is no error for its importer
            announce(*hint, tr("The source contains no types. Choose another one."));
        return -1;
    }
    wizard->options.setEditBack(IDD_SOURCE);
    return IDD_EDIT;
}

CString SourcePage::namedFile() const
{
    return sourcesIn(fileName).front();
}

// A longer text fits neither the field nor the settings.
void SourcePage::takeFile(const CString& chosen)
{
    if (chosen.size() > QELOptions::kMaxSourceSet) {
        theApp.Error(wizard->message->queryDescriptor()->readsFolders()
                         ? "Too many files are selected. Put them into a folder, and choose the folder."
                         : "Too many files are selected. The command typeforge-import reads all files of a folder.",
                     IDS_ERROR_TITLE);
        return;
    }
    FilePage::takeFile(chosen);
    const bool isSet = sourcesIn(chosen).size() > 1 || isFolder(chosen);
    if (isSet && wizard->message->queryDescriptor()->hasFull())
        fullCheck->setChecked(true); // several sources can only be read in full
}

// A folder is chosen by a dialog of its own, because a dialog for files can't return one.
void SourcePage::pickFolder()
{
    if (const CString folder = chooseFolder(this, "Select a folder of sources", wizard->options.queryInputFolder());
        !folder.empty())
        takeFile(folder);
    combo().setFocus();
}

void SourcePage::pickCatalogs()
{
    const std::vector<CString> files = chooseFilesToOpen(
        this, {"Select XML catalogues",
               {{"XML files", "*.XML"}, {loadText(IDS_FILTER_ALL_FILES), loadText(IDS_PATTERN_ALL_FILES)}},
               wizard->options.queryInputFolder(),
               ""});
    if (!files.empty())
        catalogEdit->setText(toUi(textOfSources(files)));
    catalogEdit->setFocus();
}

// The dialog starts with the first of the names in the field.
CString SourcePage::chooseFile()
{
    const MsgUIDescriptor& importer = *wizard->message->queryDescriptor();
    const FileQuestion question = {loadText(IDS_SELECT_SOURCE), fileFilters(importer),
                                   wizard->options.queryInputFolder(), namedFile()};
    return readsSeveral(importer) ? textOfSources(chooseFilesToOpen(this, question)) : chooseFileToOpen(this, question);
}

// Dropped files can be of another kind, so the wizard chooses the importer.
void SourcePage::OnDrop(const QStringList& files)
{
    wizard->openFiles(files);
}
