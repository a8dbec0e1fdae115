#include "Wizard/Pages/EditPage.h"

#include "Files/Descriptor.h"
#include "Files/FileMessage.h"
#include "Resources/StringTable.h"
#include "Types/ReportText.h"
#include "Ui/ElidedLabel.h"
#include "Ui/ListFilter.h"
#include "Ui/ListView.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Ui/Viewer.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Pages/ReadingRow.h"
#include "Wizard/Run/WizardRun.h"
#include "Wizard/Windows/DiagramWindow.h"
#include "Wizard/Windows/KindMark.h"
#include "Wizard/Windows/StructurePane.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

// The list shows the importer's elements themselves, without copies: a cell is read when it becomes visible.
// `structure` numbers the same types in the same order, so a row is a type's number there, too. To import again, by
// another main element or in full, the page makes a second importer, which replaces the first one only if it succeeds.
// All pointers to elements are dropped before the first one is freed (importBy()).
namespace {

// Returns the folder for documents shown in a viewer. A user can set the variables if the viewer can't read a folder;
// some browsers, for example, can't read /tmp.
CString temporaryFolder()
{
    for (const char* variable : {"TMP", "TEMP"})
        if (const char* folder = std::getenv(variable); folder != nullptr && *folder != '\0')
            return folder;
    return ".";
}

// Returns whether a type's description isn't the one generated from its name.
bool hasOwnDescription(const Element& type)
{
    CString room;
    return type.queryDescriptionPieces().joined(room) != fillText(loadText(IDS_AUTOMATIC), type.queryName());
}

} // namespace

EditPage::EditPage() : QELPage(IDD_EDIT, "Typeforge - Generated types", IDS_EDIT_TITLE, IDS_EDIT_SUBTITLE) {}

// Tab follows the order in which controls are created, not their order on the page: the list, which the page is about,
// comes before its filter and the row about the reading.
void EditPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    fullReadingHint = plainLabel(); // first in Tab order, so that it is not missed
    fullReadingHint->setObjectName("fullReadingHint");
    fullReadingHint->setWordWrap(true);
    fullReadingHint->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    fullReadingHint->setFocusPolicy(Qt::StrongFocus);
    fullReadingHint->hide();
    auto* column = new QVBoxLayout(this);
    column->addWidget(fullReadingHint);
    column->addWidget(makeLists(), 1);
    column->addLayout(makeButtons());
    readingRow = new ReadingRow;
    connect(readingRow, &ReadingRow::mainElementChosen, this, &EditPage::chooseMain);
    connect(readingRow, &ReadingRow::detailsWanted, this, &EditPage::showReport);
    connect(readingRow, &ReadingRow::fullWanted, this, &EditPage::readInFull);
    column->insertWidget(1, readingRow); // above the lists, but after them in Tab order
    addMenuRow("&View ...", [this] { OnEdit(); });
    addMenuRow("View in a &window of Typeforge", [this] { showDocument(); });
    addMenuRow("&Picture ...", [this] { showPicture(); });
    addMenuRow("&Structure", [this] { paneButton->toggle(); });
}

// Returns the list with its filter, and the pane for the structure, beside each other. The pane is hidden at first.
QWidget* EditPage::makeLists()
{
    typeList = withId(IDC_TYPES, new ListView({{loadText(IDS_COLUMN_NAME), 30}, {loadText(IDS_COLUMN_DESCRIPTION), 65}},
                                              "Generated types"));
    connect(typeList, &ListView::doubleClicked, this, &EditPage::OnDblclkEdit);
    connect(typeList, &ListView::doubleClickedBeside, this, &EditPage::OnDblclkEdit);
    connect(typeList, &ListView::selectedRowsChanged, this, &EditPage::showStructure);
    auto* list = new QWidget;
    auto* column = new QVBoxLayout(list);
    column->setContentsMargins({});
    column->addWidget(typeList);
    column->insertWidget(0, new ListFilter(*typeList, "type")); // above the list, but after it in Tab order
    pane = new StructurePane;
    paneTitle = new ElidedLabel;
    paneTitle->setObjectName("structureTitle");
    QFont bold = paneTitle->font();
    bold.setBold(true);
    paneTitle->setFont(bold);
    paneSide = new QWidget;
    auto* paneColumn = new QVBoxLayout(paneSide);
    paneColumn->setContentsMargins({});
    paneColumn->addWidget(paneTitle);
    paneColumn->addWidget(pane);
    paneSide->hide();
    connect(pane, &StructurePane::jumped, this, &EditPage::jumpTo);
    auto* splitter = new QSplitter;
    // The name under which its widths are stored.
    splitter->setObjectName("lists");
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(list);
    splitter->addWidget(paneSide);
    for (int i = 0; i < splitter->count(); ++i)
        splitter->setStretchFactor(i, 1);
    return splitter;
}

// The button for the structure stays pressed while the pane is shown.
QHBoxLayout* EditPage::makeButtons()
{
    paneButton = new QPushButton("&Structure");
    paneButton->setObjectName("showStructure");
    paneButton->setCheckable(true);
    connect(paneButton, &QPushButton::toggled, this, &EditPage::showPane);
    auto* picture = new QPushButton("&Picture ...");
    picture->setObjectName("showPicture");
    connect(picture, &QPushButton::clicked, this, &EditPage::showPicture);
    auto* view = withId(IDC_VIEW, new QPushButton("&View ..."));
    connect(view, &QPushButton::clicked, this, &EditPage::OnEdit);
    auto* row = new QHBoxLayout;
    row->addWidget(paneButton);
    row->addWidget(picture);
    row->addStretch();
    row->addWidget(view);
    return row;
}

// Adds an action to the list's context menu.
void EditPage::addMenuRow(const QString& text, const std::function<void()>& action)
{
    auto* row = new QAction(text, typeList);
    connect(row, &QAction::triggered, this, action);
    typeList->insertAction(typeList->actions().last(), row); // keeps the copy action last
}

void EditPage::OnSetActive()
{
    // If the literal reading found no types, the file may use constructs that only the full reading knows.
    const bool isLiteral = wizard->message->queryDescriptor()->hasFull() && !wizard->fullMessage();
    const CString unsupported = isLiteral ? wizard->unsupportedConstructs : CString();
    if (!unsupported.empty())
        fullReadingHint->setText(
            tr("Check \"Read in full\" on the page before: the source uses %1.").arg(toUi(unsupported)));
    fullReadingHint->setHidden(unsupported.empty() || wizard->message->beginEnum() != 0);
    // Without types the hint says it in words; the button is there in both cases.
    readingRow->showReading(*wizard->message, wizard->fullMessage(), !unsupported.empty());
    showTypes();
}

// Reads the structure in the work's thread into locals, because the window can be resized meanwhile and then reads the
// members. Afterwards the list's functions read elements of the importer whenever a row becomes visible.
void EditPage::showTypes()
{
    structure.reset();
    types.clear();
    std::shared_ptr<TypeStructure> made; // resizing the window reads the page's own meanwhile
    bool foundOwnDescription = false;
    sheet()->runLong([&] {
        made = std::make_shared<TypeStructure>(*wizard->message);
        for (std::uint32_t type = 0; type < made->size() && !foundOwnDescription; ++type)
            foundOwnDescription = hasOwnDescription((*made)[type]);
        if (made->size() != 0)
            made->users(0); // builds the index of users here, in the thread of the work
    });
    structure = made;
    hasOwnDescriptions = foundOwnDescription;
    types.reserve(static_cast<std::size_t>(wizard->message->beginEnum()));
    while (Element* element = wizard->message->enumNext())
        types.push_back(element);
    findMain();
    const FullMessage* const full = wizard->fullMessage();
    // Types of several folders can have one name, so they are shown with their folder below the base path.
    const bool showsFolders = full && full->laysOutByNamespace();
    // Folders in the model are converted by toXmlText(), so the length is that of the converted path.
    const std::size_t base = toXmlText(wizard->options.queryPath()).size();
    typeList->setRows(
        static_cast<int>(types.size()),
        [this, showsFolders, base](int row, int column) {
            const Element* element = types[static_cast<std::size_t>(row)];
            CString room;
            if (column != 0)
                return CString(element->queryDescriptionPieces().joined(room));
            return showsFolders ? element->queryPath().substr(base) + element->queryName() : element->queryName();
        },
        [this](int row) -> const ListRows::Mark& {
            return row == mainRow ? mainMark : kindMark(types[static_cast<std::size_t>(row)]->queryType());
        });
    shareColumns();
    // Nothing is selected if there is no main type.
    typeList->selectRow(mainRow);
}

// Marks the record that is named after the main type; mainRow is -1 if there is none, as with tables. If several have
// the name, the last one is it, because types come after their parts.
void EditPage::findMain()
{
    const CString name = wizard->message->queryMainTypeName();
    const auto isMain = [&name](const Element* type) {
        return type->queryType() == Element::typeRow && type->queryName() == name;
    };
    const auto found = std::find_if(types.rbegin(), types.rend(), isMain);
    mainRow = static_cast<int>(types.rend() - found) - 1;
    if (mainRow < 0)
        return;
    mainMark = kindMark((*found)->queryType());
    mainMark.word += tr(", main type");
    mainMark.isStrong = true;
}

// Imports the source again, by another importer. The previous import is kept until the new one succeeds. Returns false
// if it fails or is cancelled. Takes ownership of `other`.
bool EditPage::importBy(FullMessage* other)
{
    std::unique_ptr<MsgBase> previous = std::exchange(wizard->message, std::unique_ptr<MsgBase>(other));
    // ask() shows errors; a cancelled import needs no message.
    const auto import = [this]() -> LRESULT { return wizard->importAgain() ? 0 : -1; };
    if (sheet()->ask(import) == -1) {
        wizard->message = std::move(previous);
        wizard->setCurrentFolder(WizardRun::folderCWD); // as after an import that succeeds
        return false;
    }
    clearTypes(); // the page still shows elements of the previous import
    // Freeing 100,000 types takes 0.1 s.
    sheet()->runLong([&previous] { previous.reset(); });
    return true;
}

// Imports from another main element. The new importer has the settings of the previous one, which stays if this fails.
void EditPage::chooseMain(const CString& name)
{
    std::unique_ptr<FullMessage> another = wizard->fullMessage()->createAnother();
    another->setRoot(name);
    const bool isImported = importBy(another.release());
    // A changed source may have other main elements.
    readingRow->showReading(*wizard->message, wizard->fullMessage(), false);
    if (isImported)
        showTypes();
}

// Imports the source in full. The choice becomes an option, so that the input page shows it and the next source is read
// in the same way.
void EditPage::readInFull()
{
    typeList->setFocus(); // the button disappears
    if (!importBy(wizard->message->queryDescriptor()->createFull()))
        return;
    wizard->options.setFullReading(1);
    OnSetActive();
}

LRESULT EditPage::OnWizardBack()
{
    return wizard->options.queryEditBack();
}

// The next import frees the elements while the page is hidden. Qt 6.8 also hides a page that was never shown, when
// there is nothing to clear. Spontaneous hiding, as by minimising the window, keeps the types.
void EditPage::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous() && typeList)
        clearTypes();
}

// Empties the pane first, because it refers to the structure.
void EditPage::clearTypes()
{
    pane->showType(nullptr, 0);
    structure.reset();
    typeList->setRows(0, {});
}

// Shows or hides the pane when the window passes the width that has room for it. Otherwise the user's choice stays.
void EditPage::resizeEvent(QResizeEvent* event)
{
    QELPage::resizeEvent(event);
    if (std::exchange(isWide, width() >= sheet()->sizeHint().width() * 5 / 4) != isWide)
        paneButton->setChecked(isWide);
}

// Returns the selected row. Returns -1 if none is selected, after telling the user.
int EditPage::queryRow()
{
    const int row = typeList->selectedRow();
    if (row < 0)
        stay(IDS_SELECT_TYPE);
    return row;
}

// Shows the document in the user's viewer. A failure of the viewer can come up to half a minute later, when the types
// may be gone, so name and document are copied.
void EditPage::OnEdit()
{
    const int row = queryRow();
    if (row < 0)
        return;
    const CString name = types[static_cast<std::size_t>(row)]->queryName();
    CString document;
    types[static_cast<std::size_t>(row)]->asXML(document);
    TemporaryFile& file = tempFiles.emplace_back();
    Descriptor out(file.create(temporaryFolder(), "QEL_", ".xml"));
    if (!out.isOpen() || !out.write(document) || !out.close()) {
        const int error = errno;
        stay(cantOpen(file.queryName(), fileCauseOf(error)), inWords(error));
        return;
    }
    showInViewer(file.queryName(), this, [this, name, document] {
        (new DocumentWindow(sheet(), name, document, tr("No viewer for XML files could be started.")))->show();
    });
}

// A report of 100,000 losses takes half a second, so it is written in the work's thread.
void EditPage::showReport()
{
    CString report;
    const auto write = [&]() -> LRESULT {
        sheet()->runLong([&] {
            writeReport(*wizard->message, ReportFormat::text,
                        [&report](std::string_view piece) { report.append(piece); });
        });
        return 0;
    };
    if (sheet()->ask(write) == 0)
        (new DocumentWindow(sheet(), fromUi(tr("What was not carried over")), report, {}, DocumentWindow::ofReport))
            ->show();
}

void EditPage::OnDblclkEdit()
{
    OnEdit();
}

// Shows the document in a window of the program, without a viewer.
void EditPage::showDocument()
{
    const int row = queryRow();
    if (row < 0)
        return;
    CString document;
    Element* type = types[static_cast<std::size_t>(row)];
    type->asXML(document);
    // The window belongs to the sheet and destroys itself when it is closed.
    (new DocumentWindow(sheet(), type->queryName(), document, {}))->show();
}

void EditPage::showPicture()
{
    const int row = queryRow();
    if (row < 0)
        return;
    auto* window = new DiagramWindow(sheet(), structure);
    connect(window, &DiagramWindow::typeChosen, this, &EditPage::jumpTo);
    window->open(static_cast<std::uint32_t>(row));
}

// Called by the button's signal, so that the pane always follows the button.
void EditPage::showPane(bool visible)
{
    paneSide->setVisible(visible);
    shareColumns();
    showStructure();
}

// Beside the pane, the list has a column for descriptions only if some aren't generated from the names.
void EditPage::shareColumns()
{
    // 5 % stay free, because a scroll bar takes room from the columns.
    typeList->setShares(paneSide->isHidden() ? std::vector{30, 65}
                        : hasOwnDescriptions ? std::vector{75, 20}
                                             : std::vector{95, 0});
}

// A hidden pane is emptied, so that a selection costs nothing then.
void EditPage::showStructure()
{
    const int row = typeList->selectedRow();
    if (row < 0 || !structure || paneSide->isHidden()) {
        paneTitle->setText(tr("No type is selected"));
        return pane->showType(nullptr, 0);
    }
    const auto type = static_cast<std::uint32_t>(row);
    paneTitle->setText(toUi(shortName(structure->queryFullName(type))));
    pane->setAccessibleName(tr("Structure of %1").arg(paneTitle->text()));
    pane->showType(structure.get(), type);
}

// Selecting the row shows the type's structure, by the list's signal.
void EditPage::jumpTo(std::uint32_t type)
{
    typeList->selectRow(static_cast<int>(type));
}
