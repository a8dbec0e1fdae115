#include "Wizard/Pages/EditPage.h"

#include "Base/QELApp.h"
#include "Files/FileMessage.h"
#include "Resources/StringTable.h"
#include "Types/ReportText.h"
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

#include <cstdlib>
#include <utility>

namespace {

CString temporaryFolder()
{
    for (const char* variable : {"TMP", "TEMP"})
        if (const char* folder = std::getenv(variable); folder != nullptr && *folder != '\0')
            return folder;
    return ".";
}

} // namespace

EditPage::EditPage() : QELPage(IDD_EDIT, "Typeforge - Generated types", IDS_EDIT_TITLE, IDS_EDIT_SUBTITLE) {}

void EditPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    wayOut = plainLabel(); // the first for Tab, where it is shown, so that nobody misses it
    wayOut->setObjectName("wayOut");
    wayOut->setWordWrap(true);
    wayOut->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    wayOut->setFocusPolicy(Qt::StrongFocus);
    auto* column = new QVBoxLayout(this);
    column->addWidget(wayOut);
    column->addWidget(makeLists(), 1);
    column->addLayout(makeButtons());
    readingRow = new ReadingRow;
    connect(readingRow, &ReadingRow::mainElementChosen, this, &EditPage::chooseMain);
    connect(readingRow, &ReadingRow::detailsWanted, this, &EditPage::showReport);
    connect(readingRow, &ReadingRow::fullWanted, this, &EditPage::readInFull);
    column->insertWidget(1, readingRow); // above, but behind the list for Tab
    addMenuRow("&View ...", &EditPage::OnEdit);
    addMenuRow("View in a &window of Typeforge", &EditPage::showDocument);
    addMenuRow("&Picture ...", &EditPage::showPicture);
}

QWidget* EditPage::makeLists()
{
    typeList = withId(IDC_TYPES, new ListView({{loadText(IDS_COLUMN_NAME), 30}, {loadText(IDS_COLUMN_DESCRIPTION), 65}},
                                              "Generated types"));
    connect(typeList, &ListView::doubleClicked, this, &EditPage::OnDblclkEdit);
    connect(typeList, &ListView::chosen, this, &EditPage::showStructure);
    auto* list = new QWidget;
    auto* column = new QVBoxLayout(list);
    column->setContentsMargins({});
    column->addWidget(typeList);
    column->insertWidget(0, new ListFilter(*typeList, "type")); // above, but behind the list for Tab
    pane = new StructurePane;
    pane->hide();
    connect(pane, &StructurePane::jumped, this, &EditPage::jumpTo);
    auto* splitter = new QSplitter;
    splitter->setObjectName("lists");
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(list);
    splitter->addWidget(pane);
    for (int i = 0; i < splitter->count(); ++i)
        splitter->setStretchFactor(i, 1);
    return splitter;
}

QHBoxLayout* EditPage::makeButtons()
{
    paneButton = new QPushButton("&Structure");
    paneButton->setObjectName("showStructure");
    paneButton->setCheckable(true);
    connect(paneButton, &QPushButton::toggled, pane, &QWidget::setVisible);
    connect(paneButton, &QPushButton::toggled, this, &EditPage::showStructure);
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

void EditPage::addMenuRow(const QString& text, void (EditPage::*action)())
{
    auto* row = new QAction(text, typeList);
    connect(row, &QAction::triggered, this, action);
    typeList->insertAction(typeList->actions().last(), row); // copying stays the last one
}

void EditPage::OnSetActive()
{
    // What only the full reading knows has left the literal one without a type.
    const bool isLiteral = wizard->message->queryDescriptor()->hasFull() && !wizard->fullMessage();
    const CString uses = isLiteral ? wizard->usedByFull : CString();
    wayOut->setText(tr("Read it in full, by the check box on the page before: it uses %1.").arg(toUi(uses)));
    wayOut->setHidden(uses.empty() || wizard->message->beginEnum() != 0);
    readingRow->showReading(*wizard->message, wizard->fullMessage());
    readingRow->offerFull(!uses.empty());
    showTypes();
}

void EditPage::showTypes()
{
    structure.reset();
    types.clear();
    types.reserve(static_cast<std::size_t>(wizard->message->beginEnum()));
    while (Element* element = wizard->message->enumNext())
        types.push_back(element);
    const FullMessage* const full = wizard->fullMessage();
    const bool showsFolders = full && full->laysOutByNamespace();
    const std::size_t base = toXmlText(wizard->options.queryPath()).size();
    typeList->setRows(
        static_cast<int>(types.size()),
        [this, showsFolders, base](int row, int column) {
            const Element* element = types[static_cast<std::size_t>(row)];
            if (column != 0)
                return element->queryDescription();
            return showsFolders ? element->queryPath().substr(base) + element->queryName() : element->queryName();
        },
        [this](int row) -> const ListRows::Mark& {
            return kindMark(types[static_cast<std::size_t>(row)]->queryType());
        });
    showStructure();
}

// Imports once more, from another main element.
void EditPage::chooseMain(const CString& name)
{
    clear(); // the elements go
    wizard->fullMessage()->setRoot(name);
    const auto import = [this]() -> LRESULT { return wizard->importAgain() ? 0 : -1; };
    if (sheet()->ask(import) == -1)
        return sheet()->back(); // there are no types left to look at
    readingRow->showCount(*wizard->fullMessage());
    showTypes();
}

void EditPage::readInFull()
{
    clear();              // the elements go
    typeList->setFocus(); // the button goes
    wizard->message.reset(wizard->message->queryDescriptor()->createFull());
    const auto import = [this]() -> LRESULT { return wizard->importAgain() ? 0 : -1; };
    if (sheet()->ask(import) == -1)
        return sheet()->back(); // there are no types left to look at
    wizard->options.setFullReading(1);
    OnSetActive();
}

LRESULT EditPage::OnWizardBack()
{
    return wizard->options.queryEditBack();
}

// The next import frees the elements while the page is out of sight. Qt 6.8 hides a page before it was ever shown, too,
// when there is nothing to clear yet.
void EditPage::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous() && typeList)
        clear();
}

void EditPage::clear()
{
    typeList->setRows(0, {});
    pane->showType(nullptr, 0);
    structure.reset();
}

// The pane comes and goes where the window passes the width that has room for it; in between, the user decides.
void EditPage::resizeEvent(QResizeEvent* event)
{
    QELPage::resizeEvent(event);
    if (std::exchange(isWide, width() >= sheet()->sizeHint().width() * 5 / 4) != isWide)
        paneButton->setChecked(isWide);
}

// -1 where none is selected, which the user has been told then.
int EditPage::queryRow()
{
    const int row = typeList->selectedRow();
    if (row < 0)
        stay(IDS_SELECT_TYPE);
    return row;
}

void EditPage::OnEdit()
{
    const int row = queryRow();
    if (row < 0)
        return;
    CString document;
    types[static_cast<std::size_t>(row)]->asXML(document);
    view(types[static_cast<std::size_t>(row)]->queryName(), document, DocumentWindow::ofType);
}

void EditPage::showReport()
{
    CString report;
    writeReport(*wizard->message, ReportFormat::text, [&report](std::string_view piece) { report.append(piece); });
    view(fromUi(tr("What was not read")), report, DocumentWindow::ofReport);
}

void EditPage::view(const CString& name, const CString& text, DocumentWindow::Kind kind)
{
    const bool isReport = kind == DocumentWindow::ofReport;
    CString fileName;
    const FileCause cause = tempFiles.add(temporaryFolder(), text, fileName, isReport ? ".txt" : ".xml");
    if (cause != FileCause::none) {
        stay(cantOpen(fileName, cause), inWords(fileName, cause));
        return;
    }
    showInViewer(fileName, this, [this, name, text, kind, isReport] {
        const QString note = isReport ? tr("No viewer for text files could be started.")
                                      : tr("No viewer for XML files could be started.");
        (new DocumentWindow(sheet(), name, text, note, kind))->show();
    });
}

void EditPage::OnDblclkEdit()
{
    OnEdit();
}

void EditPage::showDocument()
{
    const int row = queryRow();
    if (row < 0)
        return;
    CString document;
    Element* type = types[static_cast<std::size_t>(row)];
    type->asXML(document);
    (new DocumentWindow(sheet(), type->queryName(), document, {}))->show();
}

void EditPage::showPicture()
{
    if (const int row = queryRow(); row >= 0)
        (new DiagramWindow(sheet(), queryStructure(), static_cast<std::uint32_t>(row)))->show();
}

void EditPage::showStructure()
{
    const int row = typeList->selectedRow();
    if (row < 0 || pane->isHidden())
        pane->showType(nullptr, 0);
    else
        pane->showType(&queryStructure(), static_cast<std::uint32_t>(row));
}

void EditPage::jumpTo(std::uint32_t type)
{
    typeList->selectRow(static_cast<int>(type));
    showStructure();
}

const TypeStructure& EditPage::queryStructure()
{
    if (!structure)
        structure = std::make_unique<TypeStructure>(*wizard->message);
    return *structure;
}
