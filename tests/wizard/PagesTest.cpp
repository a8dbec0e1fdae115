#include "Platform/Ui/ModalBox.h"
#include "Platform/Ui/WaitCursor.h"
#include "QEL.h"
#include "Utils/QELApp.h"
#include "wizard/Desk.h"

#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QUrl>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Texts = std::vector<CString>;

TEST(ImporterPage, ListsTheImportersAndTakesTheBasePath)
{
    struct
    {
        const char* typed;
        const char* path;
    } const rows[] = {{"\\sys\\my", "\\sys\\my\\"}, {"\\sys\\my\\", "\\sys\\my\\"}, {"", "\\"}};
    Desk desk;
    desk.walkTo(IDD_SOURCE_TYPE);
    auto& list = desk.control<ListView>(IDC_IMPORTERS);
    for (int i = 0; i < list.rowCount(); ++i)
        EXPECT_EQ(list.cell(i, 0) + ": " + list.cell(i, 1), g_amud[i]->getName() + ": " + g_amud[i]->getDescription());
    EXPECT_EQ(g_amud[list.rowCount()], nullptr);
    EXPECT_EQ(list.selectedRow(), 0);
    EXPECT_EQ(desk.control<QLineEdit>(IDC_OBJECT_PATH).text(), "\\sys\\rosettanet\\");
    for (const auto& row : rows) {
        desk.walkTo(IDD_SOURCE_TYPE);
        desk.control<QLineEdit>(IDC_OBJECT_PATH).setText(row.typed);
        desk.click("next");
        EXPECT_EQ(desk.wizard().options.queryPath(), row.path);
        desk.click("back");
        EXPECT_EQ(desk.control<QLineEdit>(IDC_OBJECT_PATH).text(), "\\sys\\rosettanet\\");
    }
}

TEST(ImporterPage, KeepsTheImporterWithTheRow)
{
    Desk desk;
    desk.walkTo(IDD_SOURCE_TYPE);
    auto& list = desk.control<ListView>(IDC_IMPORTERS);
    const QPoint row = list.visualRect(list.model()->index(0, 0)).center();
    const QPoint beside(row.x(), list.viewport()->height() - 2);
    MsgBase* const first = desk.wizard().message.get();
    EXPECT_NE(first, nullptr);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, beside);
    EXPECT_EQ(desk.wizard().message, nullptr);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
    EXPECT_NE(desk.wizard().message, nullptr);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(desk.page(), desk.wizard().message->queryNextPage());
}

TEST(ImporterPage, HasNoneForARowThatIsGone)
{
    Desk desk;
    desk.wizard().options.setLastImporterSel(99);
    desk.click("next");
    EXPECT_EQ(desk.wizard().message, nullptr);
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(), Texts{"Please select an importer before continuing"});
}

// Answers the next file dialog: with a file, or by cancelling.
void answerFileDialog(const std::string& file)
{
    QTimer::singleShot(100, [file] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        if (file.empty())
            return dialog->reject();
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(file));
        QMetaObject::invokeMethod(dialog, "accept");
    });
}

TEST(SourcePage, BrowsesFromTheFolderOfTheFile)
{
    Desk desk;
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    desk.walkTo(IDD_SOURCE);
    EXPECT_EQ(desk.control<QLabel>(IDC_FOLDER).text().toStdString(), "Current folder is " + desk.dir.path("start"));
    answerFileDialog(desk.source);
    desk.control<QAbstractButton>(IDC_BROWSE).click();
    EXPECT_EQ(desk.control<QComboBox>(IDC_INPUT_FILE).currentText().toStdString(), desk.source);
    EXPECT_EQ(desk.control<QLabel>(IDC_FOLDER).text().toStdString(), "Current folder is " + desk.dir.path("in"));
    desk.type(IDC_INPUT_FILE, "order.dtd"); // relative to that folder
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_EDIT);
    EXPECT_EQ(std::filesystem::current_path(), desk.dir.path("start"));
    EXPECT_EQ(desk.wizard().options.queryInputFile(), "order.dtd");

    desk.click("back");
    desk.type(IDC_INPUT_FILE, "/no/such/order.dtd");
    answerFileDialog("");
    desk.control<QAbstractButton>(IDC_BROWSE).click();
    EXPECT_EQ(desk.control<QComboBox>(IDC_INPUT_FILE).currentText(), "/no/such/order.dtd");
    EXPECT_EQ(desk.wizard().options.queryInputFolder(), "/no/such");
    EXPECT_EQ(desk.control<QLabel>(IDC_FOLDER).text().toStdString(), "Current folder is " + desk.dir.path("start"));
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
    EXPECT_EQ(desk.control<QComboBox>(IDC_INPUT_FILE).currentText().toStdString(), desk.source);
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_EDIT);
}

struct Thrower : MsgBase
{
    Thrower() : MsgBase(1) {}
    int parse(const CString&, const CString&, const CString&) override { throw std::runtime_error("what it says"); }
    CString queryMainTypeName() const override { return {}; }
    MsgUIDescriptor* queryDescriptor() const override { return g_amud[0]; }
};

TEST(SourcePage, StaysWhereAnImporterThrows)
{
    Desk desk;
    desk.walkTo(IDD_SOURCE);
    desk.wizard().message = std::make_unique<Thrower>();
    desk.type(IDC_INPUT_FILE, desk.source);
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(), Texts{"what it says"});
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

// A viewer that notes what it was given, and what it found there.
std::string noteViews(Desk& desk)
{
    const std::string notes = desk.dir.path("notes");
    const std::string viewer = desk.dir.write("viewer", "#!/bin/sh\nstat -c '%n %a' \"$1\" >>" + notes + "\n");
    ::chmod(viewer.c_str(), 0755);
    qputenv("TYPEFORGE_VIEWER", viewer.c_str());
    qputenv("TMP", desk.dir.path("start").c_str());
    return notes;
}

std::vector<std::string> viewFiles(const std::filesystem::path& folder)
{
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (const std::string name = entry.path().filename().string(); name.rfind("QEL_", 0) == 0)
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
    desk.control<QAbstractButton>(IDC_VIEW).click();
    EXPECT_EQ(desk.boxes.take(), Texts{"Please select a type to view"});
    const QPoint second = list.visualRect(list.model()->index(1, 0)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, second);
    desk.control<QAbstractButton>(IDC_VIEW).click();
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, second);
    const std::vector<std::string> files = viewFiles(desk.dir.path("start"));
    ASSERT_EQ(files.size(), 2u);
    CString document;
    desk.wizard().message->beginEnum();
    desk.wizard().message->enumNext();
    desk.wizard().message->enumNext()->asXML(document);
    for (const std::string& file : files) {
        EXPECT_EQ(TempDir::read(file), document);
        EXPECT_EQ(std::filesystem::path(file).extension(), ".xml");
        EXPECT_TRUE(QTest::qWaitFor([&] { return TempDir::read(notes).find(file + " 600\n") != std::string::npos; }));
    }
    desk.end();
    EXPECT_EQ(viewFiles(desk.dir.path("start")), Texts{});
}

TEST(TypesPage, SaysWhereAViewFileCantBeMade)
{
    Desk desk;
    noteViews(desk);
    qputenv("TMP", "/no/such/folder");
    desk.walkTo(IDD_EDIT);
    desk.control<ListView>(IDC_TYPES).selectRow(0);
    desk.control<QAbstractButton>(IDC_VIEW).click();
    const Texts boxes = desk.boxes.take();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].rfind("Can't open file /no/such/folder/QEL_", 0), 0u) << boxes[0];
    EXPECT_NE(boxes[0].find(".xml, error = 2"), CString::npos) << boxes[0];
    qunsetenv("TMP");
    qunsetenv("TEMP");
    desk.control<QAbstractButton>(IDC_VIEW).click(); // without both, the current folder
    EXPECT_EQ(viewFiles(desk.dir.path("start")).size(), 1u);
}

class EndingSignal : public testing::TestWithParam<int>
{};

TEST_P(EndingSignal, TakesTheViewFilesAlong)
{
    TempDir dir;
    const pid_t child = ::fork();
    if (child == 0) {
        TemporaryFiles files;
        CString name;
        for (int i = 0; i < 3; ++i)
            files.add(dir.path(), "x", name);
        std::ofstream(dir.path("ready"));
        for (;;)
            ::pause();
    }
    while (!std::filesystem::exists(dir.path("ready")))
        ::usleep(1000);
    EXPECT_EQ(viewFiles(dir.path()).size(), 3u);
    ::kill(child, GetParam());
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == GetParam());
    EXPECT_EQ(viewFiles(dir.path()), Texts{});
}

INSTANTIATE_TEST_SUITE_P(Signals, EndingSignal, testing::Values(SIGTERM, SIGINT, SIGHUP));

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
    desk.click("back"); // the elements are freed here
    desk.wizard().grab();
    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
}

TEST(OutputFilePage, KeepsTheOldFileWhereTheNewOneFails)
{
    Desk desk;
    desk.output = desk.dir.write("out/there.xml", "old");
    desk.walkTo(IDD_OUTPUT_FILE);
    desk.type(IDC_OUTPUT_FILE, "/dev/full");
    desk.click("next");
    desk.type(IDC_OUTPUT_FILE, desk.dir.path("out"));
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(), (Texts{"Can't open file /dev/full, error = 13",
                                        "Can't open file " + desk.dir.path("out") + ", error = 5"}));
    EXPECT_EQ(desk.page(), IDD_OUTPUT_FILE);
    desk.type(IDC_OUTPUT_FILE, desk.output);
    desk.click("next");
    CString document;
    desk.wizard().message->getXML(document);
    EXPECT_EQ(TempDir::read(desk.output), document);
    QELOptions& options = desk.wizard().options;
    CComboBox combo;
    EXPECT_EQ(options.fillOutputFile(combo), desk.output);
    EXPECT_EQ(combo.count(), 3); // also the names that couldn't be written
}

TEST(Sheet, HelpLeadsToThePagesTopic)
{
    Desk desk;
    desk.walkTo(IDD_OUTPUT_FILE);
    desk.click("help");
    auto* window = desk.wizard().findChild<QWidget*>("helpWindow");
    ASSERT_NE(window, nullptr);
    const QString topic = window->windowTitle();
    desk.click("back");
    desk.wizard().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&desk.wizard()));
    QTest::keyClick(&desk.wizard(), Qt::Key_F1);
    EXPECT_NE(window->windowTitle().toStdString(), topic.toStdString());
    theApp.WinHelp(0x10000 + IDD_OUTPUT_FILE, 1); // by the low half
    EXPECT_EQ(window->windowTitle(), topic);
    theApp.WinHelp(IDD_OUTPUT, 2); // not the context-help command
    EXPECT_EQ(window->windowTitle(), topic);
    int pages = 0;
    while (helpIds[pages].dialogId != 0)
        ++pages;
    EXPECT_EQ(pages, 11);
}

// Three boxes of one import, the second with its check box ticked; then one of the next import.
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
        seen.push_back(box->text().toStdString() + (box->checkBox() != nullptr ? " [ ]" : ""));
        if (box->checkBox() != nullptr)
            box->checkBox()->setChecked(seen.size() == 3);
        box->button(QMessageBox::Ok)->click();
    });
    closer.start(10);
    {
        const WaitCursor wait;
        const ImportMessages together;
        for (const char* text : {"1", "2", "3", "4"})
            theApp.Error(CString(text), IDS_ERROR_TITLE);
    }
    {
        const ImportMessages together;
        theApp.Error(CString("5"), IDS_ERROR_TITLE);
    }
    theApp.Error(CString("6"), IDS_ERROR_TITLE);
    EXPECT_EQ(seen, (Texts{"1", "2 [ ]", "3 [ ]", "5", "6"}));
    setMessageBoxHandler(recorder);
}

} // namespace
