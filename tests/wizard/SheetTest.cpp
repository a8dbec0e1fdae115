// The sheet around the pages, and the lists and boxes that pages share.
#include "Base/QELApp.h"
#include "TestFolders.h"
#include "Ui/ComboBox.h"
#include "Ui/ListFilter.h"
#include "Ui/ModalBox.h"
#include "Ui/WaitCursor.h"
#include "Wizard/WindowLayout.h"
#include "Wizard/Windows/HelpWindow.h"
#include "wizard/Desk.h"

#include <QCheckBox>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <cstdlib>
#include <tuple>

namespace {

constexpr const char* kOrder = "<order><line/></order>";

struct Opened
{
    const char* name;
    const char* content;
    const char* importer; // its word; null if there is none
} const kOpened[] = {
    {"a.DTD", "", "dtd"},
    {"a.xsd", kOrder, "xsd"},
    {"a.xml", kOrder, "xml"},
    {"a.txt", "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE a [<!ELEMENT a ANY>]> <!-- --><x:schema/>", "xsd"},
    {"a.xml", "<!-- types -->\n<!ELEMENT a (b)>", "dtd"},
    {"a.xml", "<order>\n<BROKERTYPEDESCRIPTION NAME='a'/></order>", "btd"},
    {"a.txt", "order, line", nullptr},
    {"none.dtd", nullptr, nullptr},
};

TEST(Sheet, StartsAtAFileThatItIsGiven)
{
    for (const Opened& row : kOpened) {
        Desk desk;
        const CString file = row.content ? desk.dir.write(row.name, row.content) : desk.dir.path(row.name);
        desk.click("next");
        desk.wizard().openFiles({file.c_str(), "/other"});
        const bool isAlone = row.importer == nullptr || *row.importer == 'b';
        Texts boxes = {(isAlone ? "One file is imported at a time. Ignored:\n/other"
                                : "Files of one kind are imported together. Ignored:\n/other")};
        if (row.importer == nullptr)
            boxes.insert(boxes.begin(), "Select source message");
        EXPECT_EQ(desk.boxes.take(), boxes);
        ASSERT_EQ(desk.page(), row.importer != nullptr ? IDD_SOURCE : IDD_SOURCE_TYPE) << row.content;
        if (row.importer != nullptr) {
            EXPECT_EQ(desk.text(IDC_INPUT_FILE) + desk.wizard().message->queryDescriptor()->querySource().word,
                      file + row.importer);
        }
    }
}

TEST(Sheet, OffersACommandThatDoesTheSame)
{
    Desk desk;
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
    desk.source = desk.dir.path("in/it's an order.dtd");
    desk.walkTo(IDD_SOURCE_TYPE);
    desk.control<QLineEdit>(IDC_OBJECT_PATH).setText("\\a b");
    desk.importer = "DTD importer";
    desk.click("next");
    for (const char* dtd : {"<!ELEMENT order (line+)>", "no types"}) {
        desk.dir.write("in/it's an order.dtd", dtd);
        desk.walkTo(IDD_FINISH);
        const CString written = TempDir::read(desk.output);
        std::filesystem::remove(desk.output);
        const QString command = desk.wizard().activePage()->findChild<QLineEdit*>("command")->text();
        EXPECT_EQ(std::system(("cd / && " TEST_BUILD_DIR "/" + command.toStdString()).c_str()), 0);
        EXPECT_EQ(TempDir::read(desk.output), written);
        desk.click("back");
    }
    qunsetenv("SOURCE_DATE_EPOCH");
}

TEST(Sheet, KeepsWhatTheUserMadeOfTheWindows)
{
    Desk desk;
    desk.walkTo(IDD_SOURCE_TYPE);
    desk.wizard().resize(720, 640);
    desk.control<ListView>(IDC_IMPORTERS).setColumnWidth(0, 77);
    storeLayout(desk.wizard());
    desk.end();
    restoreGeometry(desk.wizard());
    desk.walkTo(IDD_SOURCE_TYPE);
    EXPECT_EQ(desk.wizard().size(), QSize(720, 640));
    EXPECT_EQ(desk.control<ListView>(IDC_IMPORTERS).columnWidth(0), 77);
}

TEST(Sheet, HelpLeadsToThePagesTopic)
{
    Desk desk;
    desk.walkTo(IDD_OUTPUT_FILE);
    desk.click("help");
    const HelpWindow& window = desk.wizard().helpWindow();
    EXPECT_TRUE(window.isVisible());
    const CString topic = window.windowTitle().toStdString();
    desk.click("back");
    desk.click("help");
    EXPECT_NE(window.windowTitle().toStdString(), topic);
    theApp.WinHelp(0x10000 + IDD_OUTPUT_FILE, 1); // the low half is the page
    theApp.WinHelp(IDD_OUTPUT, 2);                // not the context help command
    EXPECT_EQ(window.windowTitle().toStdString(), topic);
}

TEST(Combo, FollowsTheWheelOnlyWithTheFocus)
{
    for (const bool hasFocus : {false, true}) {
        QWidget window;
        auto* column = new QVBoxLayout(&window);
        auto* combo = newRecentCombo("&Name");
        auto* other = new QLineEdit;
        for (QWidget* control : std::initializer_list<QWidget*>{combo, other})
            column->addWidget(control);
        combo->addItems({"a", "b"});
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        (hasFocus ? static_cast<QWidget*>(combo) : other)->setFocus();
        QWheelEvent notch({5, 5}, combo->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(combo, &notch);
        EXPECT_EQ(combo->currentText(), hasFocus ? "b" : "a");
    }
}

struct Arrangement
{
    int clicks; // on the first column's title
    const char* filter;
    const char* shown;
    int selected; // afterwards; row 2 is selected before
} const kArrangements[] = {
    {0, "", "b\nA\nc\nd", 2}, {1, "", "A\nb\nc\nd", 2}, {2, "", "c\nd\nb\nA", 2},
    {3, "", "b\nA\nc\nd", 2}, {2, "B", "c\nd\nb", 2},   {0, "a", "A", -1},
};

TEST(List, FiltersSortsAndCopies)
{
    const std::pair<const char*, const char*> cells[] = {{"b", ""}, {"A", ""}, {"c\nd", "like b"}};
    for (const Arrangement& row : kArrangements) {
        SCOPED_TRACE(testing::Message() << row.clicks << " clicks, filter " << row.filter);
        ListView list({{"Name", 50}, {"Description", 50}}, "Rows");
        ListFilter filter(list, "row");
        list.setRows(3, [&](int at, int column) { return column == 0 ? cells[at].first : cells[at].second; });
        list.show();
        list.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
        int heard = -1; // the selected row at the last signal
        QObject::connect(&list, &ListView::selectedRowsChanged, &list, [&] { heard = list.selectedRow(); });
        list.selectRow(2);
        EXPECT_EQ(list.currentIndex().data(), "c d"); // on one line
        for (int i = 0; i < row.clicks; ++i)
            QTest::mouseClick(list.header()->viewport(), Qt::LeftButton, {}, {5, 5});
        QTest::keyClicks(filter.findChild<QLineEdit*>(), row.filter);
        EXPECT_EQ(list.selectedRow(), row.selected);
        EXPECT_EQ(heard, row.selected);
        QTest::keySequence(&list, QKeySequence::Copy);
        EXPECT_EQ(QApplication::clipboard()->text(), row.selected == 2 ? "c\nd" : row.shown);
        list.clearSelection();
        QTest::keySequence(&list, QKeySequence::Copy);
        EXPECT_EQ(QApplication::clipboard()->text(), row.shown);
        list.selectRow(0); // even if the filter hides it
        EXPECT_EQ(list.selectedRow(), 0);
    }
}

struct Pressed
{
    int rows;
    const char* filter;
    Qt::Key key; // goes to the field if a filter is typed, else to the list
    int selected;
    const char* count;
} const kPressed[] = {
    {1, "", Qt::Key_Down, 0, "1 row"}, {1, "", Qt::Key_End, 0, "1 row"},           {3, "", Qt::Key_Down, 0, "3 rows"},
    {3, "", Qt::Key_End, 2, "3 rows"}, {3, "1", Qt::Key_Return, 1, "1 of 3 rows"},
};

// The selection while rows are hidden. Steps: a letter is a filter, "*" selects all shown rows, "1" only the first one,
// "!" shows only the selected rows, "?" shows the others again.
TEST(List, KeepsHiddenRowsSelectedWhereThereCanBeSeveral)
{
    const std::tuple<QAbstractItemView::SelectionMode, const char*, std::vector<int>, int> rows[] = {
        {QAbstractItemView::ExtendedSelection, "a*b", {0, 2}, 2},
        {QAbstractItemView::ExtendedSelection, "a*b1", {0, 1, 2}, 2},
        {QAbstractItemView::ExtendedSelection, "a*b1 ", {0, 1, 2}, 4},
        {QAbstractItemView::ExtendedSelection, "a*b1 1", {0}, 4},
        {QAbstractItemView::ExtendedSelection, "a*b1!", {0, 1, 2}, 1},
        {QAbstractItemView::ExtendedSelection, "a* !", {0, 2}, 2},
        {QAbstractItemView::ExtendedSelection, "a* !1", {0}, 2},
        {QAbstractItemView::ExtendedSelection, "a* !?", {0, 2}, 4},
        {QAbstractItemView::SingleSelection, "a1b", {}, 2},
    };
    for (const auto& [mode, steps, selected, shown] : rows) {
        const char* const names[] = {"a0", "b1", "\u00C4A2", "b3"};
        ListView list({{"Name", 50}}, "Rows");
        list.setSelectionMode(mode);
        list.setRows(4, [&](int at, int) { return names[at]; });
        for (const char step : std::string_view(steps)) {
            if (step == '*')
                list.selectAll();
            else if (step == '1')
                list.selectionModel()->select(list.model()->index(0, 0), QItemSelectionModel::ClearAndSelect);
            else if (step == '!' || step == '?')
                list.setSelectedOnly(step == '!');
            else
                list.setFilter(QString(QChar(step)).trimmed());
        }
        EXPECT_EQ(list.selectedRows(), selected) << steps;
        EXPECT_EQ(list.rowCount(), shown) << steps;
    }
}

// If a row is current but not selected, the first key selects it.
TEST(List, SelectsByKeyboardAlone)
{
    for (const Pressed& row : kPressed) {
        QWidget window;
        auto* list = new ListView({{"Name", 50}}, "Rows");
        auto* filter = new ListFilter(*list, "row");
        auto* column = new QVBoxLayout(&window);
        column->addWidget(list);
        column->addWidget(filter);
        list->setRows(row.rows, [](int at, int) { return std::to_string(at); });
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        list->setFocus(Qt::TabFocusReason);
        if (*row.filter != '\0') {
            filter->findChild<QLineEdit*>()->setFocus();
            QTest::keyClicks(QApplication::focusWidget(), row.filter);
        }
        QTest::keyClick(QApplication::focusWidget(), row.key);
        EXPECT_EQ(list->selectedRow(), row.selected) << row.rows << " rows, filter " << row.filter;
        EXPECT_EQ(filter->findChild<QLabel*>("count")->text(), row.count);
    }
}

// Three boxes of one import, the second with its check box ticked, then a box of the next import.
TEST(MessageBox, OffersToHideTheRestOfAnImport)
{
    Desk desk;
    const MessageBoxHandler recorder = setMessageBoxHandler(ModalBox(desk.wizard()));
    Texts seen;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr)
            return;
        EXPECT_EQ(box->windowTitle(), "Typeforge Error");
        EXPECT_EQ(box->parentWidget(), &desk.wizard());
        EXPECT_EQ(box->icon(), QMessageBox::NoIcon);
        EXPECT_EQ(box->buttons().size(), 1);
        EXPECT_GT(box->width(), box->fontMetrics().horizontalAdvance(box->windowTitle()));
        EXPECT_LE(box->frameGeometry().height(), box->screen()->availableSize().height() * 6 / 10);
        seen.push_back(box->text().toStdString() + (box->checkBox() != nullptr ? " [ ]" : ""));
        if (const auto parts = box->findChildren<QTextEdit*>(); parts.size() == 2)
            seen.back() += " (" + parts[1]->toPlainText().toStdString() + ")";
        if (box->checkBox() != nullptr)
            box->checkBox()->setChecked(seen.size() == 3);
        box->button(QMessageBox::Ok)->click();
    });
    closer.start(10);
    for (const Texts& import : {Texts{"1", "2", "3", "4"}, {"5"}}) {
        const WaitCursor wait;
        const ImportMessages together;
        for (const CString& text : import)
            theApp.Error(text, IDS_ERROR_TITLE);
    }
    const CString statement(100000, 'x'); // as long as real sources have
    theApp.Error(statement, IDS_ERROR_TITLE, statement);
    EXPECT_EQ(seen, (Texts{"1", "2 [ ]", "3 [ ]", "5", statement + " (" + statement + ")"}));
    setMessageBoxHandler(recorder);
}

} // namespace
