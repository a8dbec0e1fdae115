#include "Base/QELApp.h"
#include "Files/AtomicFile.h"
#include "TestFolders.h"
#include "Ui/ListFilter.h"
#include "Ui/ModalBox.h"
#include "Ui/RecentCombo.h"
#include "Ui/WaitCursor.h"
#include "Wizard/QEL.h"
#include "Wizard/WindowLayout.h"
#include "wizard/Desk.h"

#include <QCheckBox>
#include <QClipboard>
#include <QCompleter>
#include <QDropEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTextEdit>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <gmock/gmock.h>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace {

TEST(ImporterPage, ListsTheImportersAndTakesTheBasePath)
{
    Desk desk;
    desk.walkTo(IDD_SOURCE_TYPE);
    auto& list = desk.control<ListView>(IDC_IMPORTERS);
    for (int i = 0; i < list.rowCount(); ++i)
        EXPECT_EQ(list.cell(i, 0) + ": " + list.cell(i, 1), g_amud[i]->getName() + ": " + g_amud[i]->getDescription());
    EXPECT_EQ(g_amud[list.rowCount()], nullptr);
    EXPECT_EQ(list.selectedRow(), 0);
    const int width = list.contentsRect().width();
    EXPECT_EQ(std::pair(list.columnWidth(0), list.columnWidth(1)), std::pair(width * 30 / 100, width * 65 / 100));
    for (const auto& [typed, path] :
         {std::pair{"\\sys\\my", "\\sys\\my\\"}, {"\\sys\\my\\", "\\sys\\my\\"}, {"", "\\"}}) {
        EXPECT_EQ(desk.text(IDC_OBJECT_PATH), "\\sys\\rosettanet\\");
        desk.control<QLineEdit>(IDC_OBJECT_PATH).setText(typed);
        desk.click("next");
        EXPECT_EQ(desk.wizard().options.queryPath(), path) << typed;
        desk.click("back");
    }
}

TEST(ImporterPage, KeepsTheImporterWithTheRow)
{
    Desk desk;
    desk.wizard().options.setLastImporterSel(99); // a row that no longer exists
    desk.click("next");
    EXPECT_EQ(desk.wizard().message, nullptr);
    auto& list = desk.control<ListView>(IDC_IMPORTERS);
    const QPoint row = list.visualRect(list.model()->index(0, 0)).center();
    const QPoint beside(row.x(), list.viewport()->height() - 2);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
    EXPECT_NE(desk.wizard().message, nullptr);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, beside);
    EXPECT_EQ(desk.wizard().message, nullptr);
    for (const auto& [button, other] : {std::pair(Qt::RightButton, 1), {Qt::MiddleButton, 2}, {Qt::LeftButton, 0}}) {
        QTest::mouseClick(list.viewport(), button, {}, list.visualRect(list.model()->index(other, 0)).center());
        EXPECT_EQ(desk.wizard().message->queryDescriptor(), g_amud[other]);
    }
    desk.control<QLineEdit>(IDC_OBJECT_PATH).setText("\\typed\\");
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(desk.text(IDC_OBJECT_PATH), "\\sys\\rosettanet\\");
    QTest::qWait(QApplication::doubleClickInterval());
    desk.control<QLineEdit>(IDC_OBJECT_PATH).setText("\\typed again");
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(desk.wizard().options.queryPath(), "\\typed again\\");
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

TEST(SourcePage, BrowsesFromTheFolderOfTheFile)
{
    Desk desk;
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    desk.walkTo(IDD_SOURCE);
    EXPECT_EQ(desk.text(IDC_FOLDER), "Current folder is " + desk.dir.path("start"));
    answerFileDialog(desk.source);
    desk.press(IDC_BROWSE);
    EXPECT_EQ(desk.text(IDC_INPUT_FILE), desk.source);
    EXPECT_EQ(desk.text(IDC_FOLDER), "Current folder is " + desk.dir.path("in"));
    desk.control<QComboBox>(IDC_INPUT_FILE).clearEditText();
    auto* field = desk.control<QComboBox>(IDC_INPUT_FILE).lineEdit();
    QTest::keyClicks(field, "or"); // relative to that folder
    EXPECT_EQ(field->completer()->currentCompletion(), "order.dtd");
    QTest::keyClicks(field, "der.dtd");
    EXPECT_EQ(field->completer()->completionCount(), 0);
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_EDIT);
    EXPECT_EQ(std::filesystem::current_path(), desk.dir.path("start"));
    EXPECT_EQ(desk.wizard().options.queryInputFile(), "order.dtd");

    desk.click("back");
    const std::string start = desk.dir.path("start");
    for (const auto& [file, folder, current] :
         {std::tuple{"/order.dtd", "/", std::string("/")}, {"/no/such/order.dtd", "/no/such", start}}) {
        desk.type(IDC_INPUT_FILE, file);
        answerFileDialog("");
        desk.press(IDC_BROWSE);
        EXPECT_EQ(desk.text(IDC_INPUT_FILE), file);
        EXPECT_EQ(desk.wizard().options.queryInputFolder(), folder);
        EXPECT_EQ(desk.text(IDC_FOLDER), "Current folder is " + current);
    }
}

TEST(SourcePage, TakesAFileThatIsDroppedOnIt)
{
    Desk desk;
    desk.walkTo(IDD_SOURCE);
    QMimeData data;
    data.setUrls({QUrl("http://example.org/x.dtd"), QUrl::fromLocalFile(QString::fromStdString(desk.source))});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(desk.wizard().activePage(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(desk.wizard().activePage(), &drop);
    EXPECT_EQ(desk.text(IDC_INPUT_FILE), desk.source);
}

struct Thrower : MsgBase
{
    Thrower() : MsgBase(1) {}
    int parse(const CString&, const CString&, const CString&) override { throw std::runtime_error("what it says"); }
    CString queryMainTypeName() const override { return {}; }
    MsgUIDescriptor* queryDescriptor() const override { return g_amud[0]; }
};

TEST(SourcePage, StaysWhereAnImportFails)
{
    Desk desk;
    desk.importer = "XML data importer";
    desk.walkTo(IDD_SOURCE);
    ::mkfifo(desk.dir.path("in/pipe").c_str(), 0600);
    Texts details;
    for (const CString& file : {desk.dir.path("in/pipe"), desk.dir.path("in"), CString("/no/such/file"),
                                desk.dir.write("in/broken.xml", "<a>\n<b></a>")}) {
        desk.type(IDC_INPUT_FILE, file);
        desk.click("next");
        details.push_back(desk.boxes.details);
    }
    EXPECT_EQ(details, (Texts{"The system refuses it", "Is a directory", "No such file or directory",
                              "In the file " + desk.dir.path("in/broken.xml")}));
    desk.wizard().message = std::make_unique<Thrower>();
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(),
              (Texts{"Select source message", "Select source message", "Select source message",
                     "Error on line 2, column 8.\nError text is 'Opening and ending tag mismatch: b line 2 and a'.",
                     "what it says"}));
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

// The importers with a full reading offer it, and the errors that end a literal reading point to it.
TEST(SourcePage, OffersTheFullReading)
{
    Desk desk;
    desk.importer = "XML Schema importer";
    desk.source = desk.dir.write("in/a.xsd", "<schema xmlns='http://www.w3.org/2001/XMLSchema' targetNamespace='t'>"
                                             "<element name='a' type='string'/></schema>");
    desk.walkTo(IDD_SOURCE);
    auto& full = desk.control<QCheckBox>(IDC_FULL_READING);
    EXPECT_TRUE(full.isVisible() && !full.isChecked());
    desk.type(IDC_INPUT_FILE, desk.source);
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(desk.boxes.take().size(), 1u);
    EXPECT_THAT(desk.boxes.details,
                testing::MatchesRegex("Read it in full, by the check box on this page: it uses a target.*"));
    full.click();
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_EDIT);
    EXPECT_EQ(desk.wizard().options.queryFullReading(), 1);
    desk.click("back");
    full.click();
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(desk.boxes.take().size(), 1u);
    desk.click("back");
    desk.importer = "XML data importer";
    desk.walkTo(IDD_SOURCE);
    EXPECT_FALSE(full.isVisible());
}

// Installs a viewer that records the names and permissions of its files.
std::string noteViews(Desk& desk)
{
    const std::string notes = desk.dir.path("notes");
    const std::string viewer = desk.dir.write("viewer", "#!/bin/sh\nstat -c '%n %a' \"$1\" >>" + notes + "\n");
    ::chmod(viewer.c_str(), 0755);
    qputenv("TYPEFORGE_VIEWER", viewer.c_str());
    qputenv("TMP", desk.dir.path("start").c_str());
    return notes;
}

Texts viewFiles(const std::filesystem::path& folder)
{
    Texts found;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().string().starts_with("QEL_"))
            found.push_back(entry.path().string());
    return found;
}

TEST(TypesPage, ShowsATypeInAFileOfItsOwnForTheRun)
{
    Desk desk;
    const std::string notes = noteViews(desk);
    desk.walkTo(IDD_EDIT);
    auto& list = desk.control<ListView>(IDC_TYPES);
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.cell(1, 0) + ", " + list.cell(1, 1), "order, order (Automatically created)");
    EXPECT_EQ(list.selectedRow(), 1); // the main type
    EXPECT_TRUE(list.model()->index(1, 0).data(Qt::FontRole).value<QFont>().bold());
    EXPECT_EQ(list.model()->index(1, 0).data(Qt::AccessibleTextRole), "order, record, main type");
    list.clearSelection();
    desk.press(IDC_VIEW);
    EXPECT_EQ(desk.boxes.take(), Texts{"Please select a type to view"});
    const QPoint second = list.visualRect(list.model()->index(1, 0)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, second);
    desk.press(IDC_VIEW);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, second);
    const Texts files = viewFiles(desk.dir.path("start"));
    ASSERT_EQ(files.size(), 2u);
    for (const CString& file : files) {
        EXPECT_THAT(TempDir::read(file), testing::HasSubstr("NAME=\"\\sys\\rosettanet\\order\\order\""));
        EXPECT_TRUE(file.ends_with(".xml"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return TempDir::read(notes).find(file + " 600\n") != std::string::npos; }));
    }

    qputenv("TMP", "/no/such/folder");
    desk.press(IDC_VIEW);
    EXPECT_THAT(desk.boxes.take(),
                testing::ElementsAre(testing::MatchesRegex("Can't open file /no/such/folder/QEL_.*\\.xml, error = 2")));
    qunsetenv("TMP");
    qunsetenv("TEMP");
    desk.press(IDC_VIEW); // without either, the current folder
    EXPECT_EQ(viewFiles(desk.dir.path("start")).size(), 3u);
    desk.end();
    EXPECT_EQ(viewFiles(desk.dir.path("start")), Texts{});
}

TEST(TypesPage, SaysWhatAFullReadingLeftOutAndImportsFromAnotherMainElement)
{
    Desk desk;
    noteViews(desk);
    desk.source = desk.dir.write(
        "in/a.dtd", "<!ELEMENT a (c, d)><!ELEMENT b (c)><!ELEMENT c (e)><!ELEMENT d ANY><!ELEMENT e EMPTY>");
    desk.walkTo(IDD_SOURCE);
    desk.press(IDC_FULL_READING);
    desk.walkTo(IDD_EDIT);
    auto& list = desk.control<ListView>(IDC_TYPES);
    EXPECT_EQ(list.rowCount(), 3);
    EXPECT_EQ(desk.text(IDC_NOT_CARRIED_OVER), "1 detail was not carried over");
    desk.press(IDC_DETAILS);
    EXPECT_EQ(viewFiles(desk.dir.path("start")), Texts{});
    EXPECT_EQ(desk.wizard().findChild<QPlainTextEdit*>("document")->toPlainText().toStdString(),
              "1 detail\n" + desk.source +
                  ":1:52: content ANY: d\n\n1 content ANY\n3 types, 4 fields: 2 typed, 2 left text\n");

    auto& main = desk.control<QComboBox>(IDC_MAIN_ELEMENT);
    EXPECT_EQ(std::pair(main.count(), main.currentText()), std::pair(2, QString("a")));
    main.setFocus();
    QTest::keyClick(&main, Qt::Key_Down);
    EXPECT_EQ(list.rowCount(), 3); // the key leads there, Enter takes it
    QTest::keyClick(&main, Qt::Key_Escape);
    EXPECT_EQ(main.currentText(), "a");
    QTest::keyClick(&main, Qt::Key_Down);
    QTest::keyClick(&main, Qt::Key_Return);
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.cell(0, 0) + " " + list.cell(1, 0), "c b");
    desk.click("next");
    desk.click("back");
    EXPECT_EQ(std::pair(main.count(), main.currentText()), std::pair(2, QString("b")));
    QTest::keyClick(&main, Qt::Key_Up);
    QTest::keyClick(&main, Qt::Key_Return);
    EXPECT_EQ(list.rowCount(), 3);
    EXPECT_LE(desk.wizard().activePage()->minimumSizeHint().width(), 500); // half of a small screen
    std::filesystem::rename(desk.source, desk.dir.path("in/gone"));
    QTest::keyClick(&main, Qt::Key_Down);
    QTest::keyClick(&main, Qt::Key_Return); // the import fails, and the previous one stays
    EXPECT_EQ(desk.boxes.take(), Texts{"Can't open file " + desk.source + ", error = 2"});
    EXPECT_EQ(std::pair(list.rowCount(), main.currentText()), std::pair(3, QString("a")));
    desk.click("back");
    std::filesystem::rename(desk.dir.path("in/gone"), desk.source);
    desk.press(IDC_FULL_READING);
    desk.click("next");
    EXPECT_FALSE(main.isVisible() || desk.control<QWidget>(IDC_DETAILS).isVisible());
    const auto* wayOut = desk.wizard().activePage()->findChild<QLabel*>("wayOut");
    EXPECT_FALSE(wayOut->isVisible());
    desk.dir.write("in/a.dtd", "<!ENTITY % a 'x'>");
    desk.click("back");
    desk.click("next");
    EXPECT_TRUE(wayOut->isVisible());
    EXPECT_EQ(wayOut->text(), "Read it in full, by the check box on the page before: it uses parameter entities.");
}

// View files whose name is relative to the folder at creation, and an output file that isn't complete yet.
TEST(TypesPage, TakesTheFilesInHandAlongWhereASignalEndsIt)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        TempDir dir;
        const pid_t child = ::fork();
        if (child == 0) {
            TemporaryFiles files;
            CString name;
            std::filesystem::current_path(dir.path());
            const AtomicFile output(dir.path("QEL_output"));
            for (int i = 0; i < 3; ++i)
                files.add(".", "x", name);
            std::filesystem::current_path("/");
            std::ofstream(dir.path("ready"));
            for (;;)
                ::pause();
        }
        while (!std::filesystem::exists(dir.path("ready")))
            ::usleep(1000);
        EXPECT_EQ(viewFiles(dir.path()).size(), 3u);
        ::kill(child, signal);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        std::filesystem::remove(dir.path("ready"));
        EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
    }
}

TEST(TypesPage, HasFiftyThousandTypesAndForgetsThemOnTheWayBack)
{
    Desk desk;
    std::string dtd;
    for (int i = 0; i < 50000; ++i)
        dtd += "<!ELEMENT e" + std::to_string(i) + " (f)>";
    desk.source = desk.dir.write("in/many.dtd", dtd);
    desk.walkTo(IDD_EDIT);
    auto& list = desk.control<ListView>(IDC_TYPES);
    EXPECT_EQ(list.rowCount(), 50000);
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End})
        QTest::keyClick(&list, key);
    EXPECT_EQ(list.selectedRow(), 49999);
    EXPECT_FALSE(list.visualRect(list.model()->index(49999, 0)).isEmpty());
    desk.click("back");
    EXPECT_EQ(list.rowCount(), 0);
    desk.click("back"); // frees the elements
    desk.wizard().grab();
    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
}

struct Arrangement
{
    int clicks; // on the first column's title
    const char* filter;
    const char* shown;
    int selected; // afterwards; row 2 is selected before
} const kArrangements[] = {
    {0, "", "b\nA\nc", 2}, {1, "", "A\nb\nc", 2}, {2, "", "c\nb\nA", 2},
    {3, "", "b\nA\nc", 2}, {2, "B", "c\nb", 2},   {0, "a", "A", -1},
};

TEST(List, FiltersSortsAndCopies)
{
    const std::pair<const char*, const char*> cells[] = {{"b", ""}, {"A", ""}, {"c", "like b"}};
    for (const Arrangement& row : kArrangements) {
        SCOPED_TRACE(testing::Message() << row.clicks << " clicks, filter " << row.filter);
        ListView list({{"Name", 50}, {"Description", 50}}, "Rows");
        ListFilter filter(list, "row");
        list.setRows(3, [&](int at, int column) { return column == 0 ? cells[at].first : cells[at].second; });
        list.show();
        list.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
        int heard = -1; // the selected row, as the signal tells it
        QObject::connect(&list, &ListView::selectedRowsChanged, &list, [&] { heard = list.selectedRow(); });
        list.selectRow(2);
        for (int i = 0; i < row.clicks; ++i)
            QTest::mouseClick(list.header()->viewport(), Qt::LeftButton, {}, {5, 5});
        QTest::keyClicks(filter.findChild<QLineEdit*>(), row.filter);
        EXPECT_EQ(list.selectedRow(), row.selected);
        EXPECT_EQ(heard, row.selected);
        QTest::keySequence(&list, QKeySequence::Copy);
        EXPECT_EQ(QApplication::clipboard()->text(), row.selected == 2 ? "c" : row.shown);
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

// The selection with hidden rows. Each character is a step: a letter or a blank sets the filter, "*" selects all shown
// rows, "1" only the first of them, "!" shows only selected rows, "?" all again.
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
        const char* const names[] = {"a0", "b1", "a2", "b3"};
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

TEST(OutputFilePage, RefusesADeviceAndReplacesAFile)
{
    Desk desk;
    desk.walkTo(IDD_OUTPUT_FILE);
    const CString old = desk.dir.write("out/there.xml", "old");
    for (const CString& name : {CString(), CString("/dev/full"), old}) {
        desk.type(IDC_OUTPUT_FILE, name);
        desk.click("next");
    }
    EXPECT_EQ(desk.boxes.take(), (Texts{"Can't open file , error = 2", "Can't open file /dev/full, error = 1"}));
    CString document;
    desk.wizard().message->getXML(document);
    EXPECT_EQ(TempDir::read(old), document);
    CComboBox combo;
    EXPECT_EQ(desk.wizard().options.fillOutputFile(combo), old);
    EXPECT_EQ(combo.count(), 2); // also the name that couldn't be written, but no empty one
}

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
        Texts boxes = {(isAlone ? "One file is imported at a time. Left aside:\n/other"
                                : "Files of one kind are imported together. Left aside:\n/other")};
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
    desk.source = desk.dir.write("in/it's an order.dtd", TempDir::read(desk.source));
    desk.walkTo(IDD_SOURCE_TYPE);
    desk.control<QLineEdit>(IDC_OBJECT_PATH).setText("\\a b");
    desk.importer = "DTD importer";
    desk.click("next");
    desk.walkTo(IDD_FINISH);
    const CString written = TempDir::read(desk.output);
    std::filesystem::remove(desk.output);
    const QString command = desk.wizard().activePage()->findChild<QLineEdit*>("command")->text();
    EXPECT_EQ(std::system(("cd / && " TEST_BUILD_DIR "/" + command.toStdString()).c_str()), 0);
    EXPECT_EQ(TempDir::read(desk.output), written);
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
    auto* window = desk.wizard().findChild<QWidget*>("helpWindow");
    ASSERT_NE(window, nullptr);
    const CString topic = window->windowTitle().toStdString();
    desk.click("back");
    desk.click("help");
    EXPECT_NE(window->windowTitle().toStdString(), topic);
    theApp.WinHelp(0x10000 + IDD_OUTPUT_FILE, 1); // the low half is the page
    theApp.WinHelp(IDD_OUTPUT, 2);                // not the context help command
    EXPECT_EQ(window->windowTitle().toStdString(), topic);
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
