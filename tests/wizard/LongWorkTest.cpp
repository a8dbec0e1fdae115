#include "Ui/LongWork.h"

#include "Base/Progress.h"
#include "Base/QELApp.h"
#include "Ui/ModalBox.h"
#include "Ui/RemainingTime.h"
#include "Wizard/Windows/DocumentWindow.h"
#include "Wizard/Windows/HelpWindow.h"
#include "support/Servers.h"
#include "wizard/Desk.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <gmock/gmock.h>

#include <thread>

namespace {

// Waits for the row that shows long work, and for a silent line if there is one, and then acts once. Checks at the end
// that the row appeared. Work that goes on after the act ends in another way: by the next page, or by an error box.
class Watcher
{
public:
    Watcher(Desk& watched, std::function<void()> act, const Line* line = nullptr) : desk(watched)
    {
        QObject::connect(&timer, &QTimer::timeout, [this, act, line] {
            auto* row = desk.wizard().findChild<QWidget*>("progressRow");
            if (row->isHidden() || !text.empty() || (line && line->left > 0))
                return;
            text = row->findChild<QLabel*>("progressText")->text().toStdString();
            act();
        });
        timer.start(5);
    }
    ~Watcher()
    {
        EXPECT_NE(text, "") << "nothing was shown";
        EXPECT_TRUE(desk.wizard().findChild<QWidget*>("progressRow")->isHidden());
        EXPECT_TRUE(desk.wizard().isVisible());
    }

    CString text; // of the row

private:
    Desk& desk;
    QTimer timer;
};

void pressEscape(Desk& desk)
{
    QTest::keyClick(desk.wizard().focusWidget(), Qt::Key_Escape);
}

void pressAltC(Desk& desk)
{
    QTest::keyClick(desk.wizard().windowHandle(), Qt::Key_C, Qt::AltModifier);
}

// Returns a DTD of elements e0, e1 ... that refer to each other, whose types take long to arrange.
CString webOf(std::size_t count)
{
    CString dtd;
    for (std::size_t i = 0; i < count; ++i)
        dtd += "<!ELEMENT e" + std::to_string(i) + " (e" + std::to_string(i * 7919 % count) + ",e" +
               std::to_string((i * 104729 + 1) % count) + "*)>";
    return dtd;
}

// Counts tables until it is cancelled.
void countTables()
{
    for (std::uint64_t done = 0;; ++done) {
        if (!reportProgress({Work::tables, 1000 + done, 5000}))
            throw Cancelled();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

TEST(LongWork, LetsInputReachNothingButItsCancel)
{
    const std::function<void(Desk&)> ways[] = {
        pressEscape,
        [](Desk& desk) { desk.click("cancel"); },
        [](Desk& desk) { QTest::keyClick(desk.wizard().findChild<QAbstractButton*>("cancel"), Qt::Key_Space); },
        [](Desk& desk) { desk.wizard().close(); },
        pressAltC,
    };
    for (const auto& cancel : ways) {
        Desk desk;
        desk.walkTo(IDD_SOURCE);
        auto& field = *desk.control<QComboBox>(IDC_INPUT_FILE).lineEdit();
        const QString before = field.text();
        HelpWindow& help = desk.wizard().helpWindow();
        help.show();
        DocumentWindow owned(&desk.wizard(), "owned", "", {});
        owned.show();
        desk.wizard().activateWindow(); // mnemonics need an active window
        ASSERT_TRUE(QTest::qWaitForWindowActive(&desk.wizard()));
        field.setFocus();
        const int width = desk.wizard().width();
        const Watcher watcher(desk, [&] {
            QTest::keyClicks(&field, "typed");
            desk.click("next");
            desk.click("back");
            QTest::mouseClick(&desk.control<QAbstractButton>(IDC_BROWSE), Qt::LeftButton);
            EXPECT_FALSE(desk.wizard().findChild<QAbstractButton*>("next")->isVisible());
            for (QWidget* window : std::initializer_list<QWidget*>{&help, &owned})
                QTest::mouseClick(window->findChild<QAbstractButton*>("close"), Qt::LeftButton);
            EXPECT_TRUE(help.isHidden() && owned.isVisible());
            cancel(desk);
        });
        EXPECT_THROW(desk.wizard().runLong(countTables), Cancelled);
        EXPECT_THAT(watcher.text, testing::MatchesRegex("Reading tables: 1,[0-9]{3} of 5,000"));
        EXPECT_EQ(field.text(), before);
        EXPECT_EQ(desk.wizard().width(), width); // the row may not widen the window
        EXPECT_EQ(desk.page(), IDD_SOURCE);
        EXPECT_TRUE(field.hasFocus() || desk.wizard().focusWidget() == field.parentWidget());
        EXPECT_TRUE(desk.wizard().findChild<QPushButton*>("next")->isDefault());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        pressEscape(desk); // too early to be meant for the wizard
        EXPECT_TRUE(desk.wizard().isVisible());
    }
}

TEST(LongWork, ShowsItsBoxesInTheWindowAndNothingWhenItIsQuick)
{
    Desk desk;
    bool hasRun = false;
    QTimer::singleShot(0, [&hasRun] { hasRun = true; });
    desk.wizard().runLong([] {});
    EXPECT_FALSE(hasRun);
    const MessageBoxHandler recorder = setMessageBoxHandler(ModalBox(desk.wizard()));
    CString shown;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            shown += box->text().toStdString();
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        }
    });
    user.start(5);
    for (const int pause : {0, 150, 500}) // before the loop, before the row, with the row
        desk.wizard().runLong([pause] {
            std::this_thread::sleep_for(std::chrono::milliseconds(pause));
            theApp.Error(std::to_string(pause), IDS_ERROR_TITLE);
        });
    EXPECT_EQ(shown, "0150500");
    desk.wizard().runLong([] { inWindowThread([] { QTest::qWait(600); }); }); // the user reads a box at the begin
    pressEscape(desk);                                                        // too early to be meant for the wizard
    EXPECT_TRUE(desk.wizard().isVisible());
    setMessageBoxHandler(recorder);
    EXPECT_THROW(desk.wizard().runLong([] { throw std::runtime_error("x"); }), std::runtime_error);
}

TEST(LongWork, SaysHowMuchInUnitsThatFit)
{
    EXPECT_EQ(progressText({Work::reading, 300, 1'234'567}), "Reading: 1 kB of 1.2 MB");
    const std::pair<double, const char*> rows[] = {
        {0.1, ", about 5 s left"}, {89, ", about 90 s left"}, {100, ", about 2 min left"}, {6000, ", about 2 h left"}};
    for (const auto& [seconds, words] : rows)
        EXPECT_EQ(RemainingTime::textFor(seconds), words);
}

TEST(LongWork, LeavesTheSourcePageWithAnEmptyImporter)
{
    Desk desk;
    desk.source = desk.dir.write("in/large.dtd", webOf(300'000));
    desk.walkTo(IDD_SOURCE);
    desk.type(IDC_INPUT_FILE, desk.source);
    {
        const Watcher watcher(desk, [&] { pressEscape(desk); });
        desk.click("next");
    }
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    EXPECT_EQ(desk.wizard().message->beginEnum(), 0);
    desk.source = desk.dir.path("in/order.dtd");
    desk.walkTo(IDD_EDIT);
}

TEST(LongWork, BringsTheFormerMainElementBack)
{
    constexpr int groups = 400, members = 500;
    Desk desk;
    CString all = "(g0", dtd = webOf(groups * members);
    for (int group = 0; group < groups; ++group) {
        const CString number = std::to_string(group);
        all += group == 0 ? "" : ",g" + number;
        dtd += "<!ELEMENT g" + number + " (x";
        for (int i = 0; i < members; ++i)
            dtd += ",e" + std::to_string(group * members + i);
        dtd += ")>";
    }
    desk.source = desk.dir.write("in/two.dtd", "<!ELEMENT a " + all + ")><!ELEMENT b " + all + ")>" + dtd);
    desk.wizard().options.setFullReading(1);
    desk.walkTo(IDD_EDIT);
    const int types = desk.control<ListView>(IDC_TYPES).rowCount();
    auto& main = desk.control<QComboBox>(IDC_MAIN_ELEMENT);
    ASSERT_EQ(main.count(), 2);
    main.setFocus();
    {
        const Watcher watcher(desk, [&] { pressEscape(desk); });
        main.setCurrentIndex(1);
        Q_EMIT main.activated(1);
    }
    EXPECT_EQ(desk.page(), IDD_EDIT);
    EXPECT_EQ(main.currentText(), "a");
    EXPECT_EQ(desk.control<ListView>(IDC_TYPES).rowCount(), types);
    EXPECT_EQ(desk.wizard().message->beginEnum(), types);
}

// The line to the server falls silent in the middle of each kind of work.
TEST(LongWork, AnswersBeforeASilentDatabase)
{
    PostgresServer server;
    CDatabase owner;
    owner.Open(server.connection("postgres"), CDatabase::readWrite, server.logon());
    owner.ExecuteSQL("CREATE ROLE guest LOGIN PASSWORD 'x'");
    for (int i = 0; i < 50; ++i)
        owner.ExecuteSQL("CREATE TABLE table_with_a_long_name_" + std::to_string(i) + " (x int)");
    Desk desk;
    desk.importer = "ODBC importer";
    const auto read = [&](long bytes, int silentOn) { // returns the bytes received, by page
        Line line(server.port);
        line.left = bytes;
        const CString name = "Server" + std::to_string(bytes); // data sources are cached by name
        setenv("ODBCINI",
               desk.dir
                   .write(name, "[" + name + "]\nDriver=PostgreSQL Unicode\nServername=127.0.0.1\nDatabase=postgres\n" +
                                    "Username=guest\nPassword=x\nPort=" + std::to_string(line.port) + "\n")
                   .c_str(),
               1);
        desk.end();
        desk.walkTo(IDD_DATA_SOURCE);
        std::vector<long> counts;
        for (const int page : {IDD_DATA_SOURCE, IDD_DATABASE_TABLE}) {
            std::optional<Watcher> watcher;
            if (page == silentOn)
                watcher.emplace(
                    desk, [&] { pressEscape(desk); }, &line);
            if (page == IDD_DATA_SOURCE)
                desk.control<ListView>(IDC_DATA_SOURCES).selectRow(0);
            else
                desk.control<ListView>(IDC_TABLES).selectAll();
            desk.click("next");
            if (page == silentOn) {
                EXPECT_EQ(desk.page(), page);
                break;
            }
            counts.push_back(bytes - line.left);
        }
        return counts;
    };
    const std::vector<long> counts = read(1'000'000, 0);
    EXPECT_EQ(desk.page(), IDD_EDIT);
    read(100, IDD_DATA_SOURCE);             // during the logon
    read(counts[0] - 100, IDD_DATA_SOURCE); // while listing the tables
    read(counts[1] - 100, IDD_DATABASE_TABLE);
    EXPECT_EQ(desk.wizard().message->beginEnum(), 0);
}

TEST(LongWork, GoesOnToTheResultsOfACreationThatStops)
{
    PostgresServer server;
    Desk desk;
    CString dtd;
    for (int i = 0; i < 60; ++i)
        dtd += "<!ELEMENT e" + std::to_string(i) + " (f)>";
    desk.source = desk.dir.write("in/types.dtd", dtd);
    desk.wizard().options.setLastOutputSel(1);
    desk.walkTo(IDD_LOGIN);
    const auto create = [&](const Line& line) {
        desk.type(IDC_SERVER, "127.0.0.1");
        desk.control<QLineEdit>(IDC_PORT).setText(QString::number(line.port));
        desk.press(IDC_LOGON_BROKER);
        desk.control<QComboBox>(IDC_USER).setEditText(server.user.c_str());
        desk.control<QLineEdit>(IDC_PASSWORD).setText(server.password.c_str());
        desk.click("next");
    };
    CDatabase owner;
    owner.Open(server.connection("postgres"), CDatabase::readWrite, server.logon());
    owner.ExecuteSQL("CREATE DATABASE typeforge");
    owner.ExecuteSQL("CREATE ROLE \"TYPEFORGE\" SUPERUSER LOGIN PASSWORD '" + server.password + "'"); // logs on at once
    long bytes = 0; // received in a whole creation; the first run also creates the table
    for (int run = 0; run < 2; ++run) {
        Line whole(server.port);
        create(whole);
        EXPECT_EQ(desk.text(IDC_TOTALS), "60 types: 60 created");
        desk.click("back");
        bytes = 1'000'000'000 - whole.left;
        owner.Open(server.connection("typeforge"), CDatabase::readWrite, server.logon());
        owner.ExecuteSQL("DELETE FROM typeforge_types");
    }
    Line silent(server.port);
    silent.left = bytes - 1000;
    {
        desk.wizard().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&desk.wizard()));
        const Watcher watcher(
            desk, [&] { pressAltC(desk); }, &silent);
        create(silent);
        EXPECT_THAT(watcher.text, testing::StartsWith("Creating types: "));
    }
    EXPECT_EQ(desk.page(), IDD_CREATE_RESULT);
    EXPECT_THAT(desk.text(IDC_TOTALS), testing::MatchesRegex("60 types: [0-9]+ created, 1 failed, [0-9]+ not created"));
    Line dead(server.port);
    dead.left = 10;
    desk.click("back");
    {
        const auto* bar = desk.wizard().findChild<QWidget*>("progressBar");
        const auto cancel = [&] {
            EXPECT_TRUE(bar->isVisible()); // the page's own bar isn't visible yet
            pressEscape(desk);
        };
        const Watcher watcher(desk, cancel, &dead);
        create(dead);
    }
    EXPECT_EQ(desk.page(), IDD_LOGIN);
}

} // namespace
