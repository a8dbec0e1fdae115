#include "Files/AtomicFile.h"
#include "Files/Descriptor.h"
#include "Files/TemporaryFile.h"
#include "TestFolders.h"
#include "wizard/Desk.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QCompleter>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QUrl>
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
    EXPECT_EQ(list.selectedRow(), -1);
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
    QTest::mouseDClick(list.viewport(), Qt::MiddleButton, {}, row);
    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
    desk.control<QLineEdit>(IDC_OBJECT_PATH).setText("\\typed again");
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(desk.wizard().options.queryPath(), "\\typed again\\");
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
    for (int i = 0; i < 2000; ++i)
        desk.dir.write("in/many/f" + std::to_string(i), "");
    field->clear();
    QTest::keyClicks(field, "m");
    EXPECT_EQ(field->completer()->currentCompletion(), "many/");
    QTest::keyClicks(field, "any/f");
    EXPECT_GT(field->completer()->completionCount(), 0);
    EXPECT_LE(field->completer()->completionCount(), 1000); // more would take long on each key
    EXPECT_TRUE(field->completer()->popup()->isVisible());
    field->setText("order.dtd");
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_EDIT);
    EXPECT_FALSE(field->completer()->popup()->isVisible());
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
    for (const auto& [importer, files] : {std::pair{"XML Schema importer", "All message types (.DTD, .XML, .XSD)"},
                                          {"Avro importer", "Avro schemas (.AVSC, .AVPR)"}}) {
        desk.click("back");
        desk.choose(importer);
        desk.click("next");
        QTimer::singleShot(100, [&listed = files] {
            const auto& dialog = *qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            EXPECT_EQ(dialog.findChild<QComboBox*>("fileTypeCombo")->currentText(), listed);
            answerFileDialog("");
        });
        desk.press(IDC_BROWSE);
    }
}

TEST(OutputFilePage, BrowsesForTheBareNameIfItsFolderIsMissing)
{
    Desk desk;
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    desk.walkTo(IDD_OUTPUT_FILE);
    desk.type(IDC_OUTPUT_FILE, "/no/such/x.xml");
    QString suggested;
    QTimer::singleShot(100, [&suggested] {
        suggested = QApplication::activeModalWidget()->findChild<QLineEdit*>("fileNameEdit")->text();
    });
    answerFileDialog("");
    desk.press(IDC_BROWSE);
    EXPECT_EQ(suggested.toStdString(), "x.xml");
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
    EXPECT_EQ(details, (Texts{"It is not a regular file", "This is a folder. Choose a file.",
                              "No such file or directory", "In the file " + desk.dir.path("in/broken.xml")}));
    desk.wizard().message = std::make_unique<Thrower>();
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(),
              (Texts{"Select source message", "Select source message", "Select source message",
                     "Error on line 2, column 8.\nError text is 'Opening and ending tag mismatch: b line 2 and a'.",
                     "what it says"}));
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(SourcePage, SaysWhyItStaysIfADocumentHasNoTypes)
{
    Desk desk;
    desk.importer = "BTD importer";
    desk.walkTo(IDD_SOURCE);
    desk.type(IDC_INPUT_FILE, desk.dir.write("in/none.xml", "<r/>"));
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_TRUE(desk.control<QLabel>(IDC_HINT).isVisible());
    EXPECT_EQ(desk.text(IDC_HINT), "The source contains no types. Choose another one.");
    desk.type(IDC_INPUT_FILE, desk.dir.write("in/bad.xml", "<r>"));
    EXPECT_FALSE(desk.control<QLabel>(IDC_HINT).isVisible());
    desk.click("next");
    EXPECT_EQ(desk.boxes.take().size(), 1u);
    EXPECT_FALSE(desk.control<QLabel>(IDC_HINT).isVisible());
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
                testing::MatchesRegex("Check \"Read in full\" on this page: the source uses a target.*"));
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
    const QPoint beside(5, list.viewport()->height() - 2);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, beside);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, beside);
    desk.press(IDC_VIEW);
    EXPECT_EQ(desk.boxes.take(), Texts(2, "Please select a type to view"));
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
    EXPECT_FALSE(desk.control<QWidget>(IDC_NOT_CARRIED_OVER).isVisible()); // the detail is that of another element
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
    desk.dir.write("in/a.dtd", "<!ELEMENT x (e)><!ELEMENT b (d)><!ELEMENT y (e)>");
    QTest::keyClick(&main, Qt::Key_Down);
    QTest::keyClick(&main, Qt::Key_Return);
    EXPECT_EQ(std::tuple(main.count(), main.itemText(0), main.currentText()),
              std::tuple(3, QString("x"), QString("b")));
    desk.click("back");
    std::filesystem::rename(desk.dir.path("in/gone"), desk.source);
    desk.press(IDC_FULL_READING);
    desk.click("next");
    EXPECT_FALSE(main.isVisible() || desk.control<QWidget>(IDC_DETAILS).isVisible());
    const auto* fullReadingHint = desk.wizard().activePage()->findChild<QLabel*>("fullReadingHint");
    EXPECT_FALSE(fullReadingHint->isVisible());
    desk.dir.write("in/a.dtd", "<!ENTITY % a 'x'>");
    desk.click("back");
    desk.click("next");
    EXPECT_TRUE(fullReadingHint->isVisible());
    EXPECT_EQ(fullReadingHint->text(),
              "Check \"Read in full\" on the page before: the source uses parameter entities.");
}

// View files whose name is relative to the folder at creation, and an output file that isn't complete yet.
TEST(TypesPage, TakesTheFilesInHandAlongWhereASignalEndsIt)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        TempDir dir;
        const pid_t child = ::fork();
        if (child == 0) {
            TemporaryFile files[3];
            std::filesystem::current_path(dir.path());
            const AtomicFile output(dir.path("QEL_output"));
            for (TemporaryFile& file : files)
                const Descriptor made(file.create(".", "QEL_", ".xml"));
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
    EXPECT_EQ(combo.count(), 3); // also the names that couldn't be written
}

} // namespace
