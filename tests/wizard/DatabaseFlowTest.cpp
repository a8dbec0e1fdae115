#include "TestFolders.h"
#include "Ui/ListView.h"
#include "support/Servers.h"
#include "support/Types.h"
#include "wizard/Desk.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTimer>
#include <gmock/gmock.h>

namespace {

/// A desk at the data source page, with the data sources of the test's own ini file.
class DatabaseFlow : public testing::Test
{
protected:
    void start(const CString& ini)
    {
        setenv("ODBCINI", desk.dir.write("odbc.ini", ini).c_str(), 1);
        desk.click("next");
        desk.choose("ODBC importer");
        desk.click("next");
        ASSERT_EQ(desk.page(), IDD_DATA_SOURCE);
    }
    ListView& list(int id) { return desk.control<ListView>(id); }
    CString rowsOf(int id)
    {
        CString text;
        for (int row = 0; row < list(id).rowCount(); ++row, text.back() = '\n')
            for (int column = 0; column < list(id).model()->columnCount(); ++column)
                text += list(id).cell(row, column) + "|";
        return text;
    }
    CString sqliteSource(const CString& name, const CString& statements)
    {
        const CString file = desk.dir.path(name + ".db");
        CDatabase database;
        database.Open("Driver=SQLite3;Database=" + file + ";", CDatabase::readWrite);
        database.ExecuteSQL(statements);
        return "[" + name + "]\nDriver=SQLite3\nDatabase=" + file + "\n";
    }
    void choose(int id, int row)
    {
        list(id).selectRow(row);
        desk.click("next");
    }
    // Fills in the logon dialogs that appear, one after the other; an empty password cancels.
    void answerLogons(const std::vector<std::pair<CString, CString>>& answers, std::size_t at = 0)
    {
        QTimer::singleShot(5, &desk.wizard(), [=, this] {
            if (QApplication::activeModalWidget() == nullptr) // still connecting
                return answerLogons(answers, at);
            const QWidget& dialog = *QApplication::activeModalWidget();
            const auto& [user, password] = answers[at];
            if (at + 1 < answers.size())
                answerLogons(answers, at + 1);
            QTest::keyClicks(dialog.findChild<QLineEdit*>("1101"), user.c_str());
            QTest::keyClicks(dialog.findChild<QLineEdit*>("1102"), password.c_str());
            const auto button = password.empty() ? QDialogButtonBox::Cancel : QDialogButtonBox::Ok;
            dialog.findChild<QDialogButtonBox*>()->button(button)->click();
        });
    }

    Desk desk;
};

TEST_F(DatabaseFlow, LeadsFromTheDataSourceToTheTypes)
{
    start(sqliteSource("First", "CREATE TABLE a (x int); CREATE TABLE b (y text); CREATE VIEW v AS SELECT x FROM a") +
          sqliteSource("Second", "CREATE TABLE other (z date)"));
    EXPECT_EQ(rowsOf(IDC_DATA_SOURCES), "First|SQLite3\nSecond|SQLite3\n");
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_DATA_SOURCE) << "nothing is selected";
    EXPECT_EQ(desk.text(IDC_HINT), "Select a data source to continue.");
    EXPECT_EQ(desk.scrollsAt(380), 0); // the list shrinks
    choose(IDC_DATA_SOURCES, 1);
    EXPECT_EQ(rowsOf(IDC_TABLES), "other|TABLE|||\n");
    EXPECT_EQ(desk.scrollsAt(380), 0);
    desk.click("back");
    EXPECT_EQ(list(IDC_DATA_SOURCES).selectedRow(), 1);
    choose(IDC_DATA_SOURCES, 0);
    EXPECT_EQ(rowsOf(IDC_TABLES), "a|TABLE|||\nb|TABLE|||\n");
    desk.click("next");
    EXPECT_THAT(desk.boxes.take(), testing::ElementsAre("Please select a table before continuing"));
    EXPECT_EQ(desk.text(IDC_SELECTED_COUNT), "None selected. Select at least one table to continue.");
    for (const char* filter : {"a", "b", ""}) {
        list(IDC_TABLES).setFilter(filter);
        list(IDC_TABLES).setCurrentIndex(list(IDC_TABLES).model()->index(0, 0)); // at last a, alone
    }
    EXPECT_EQ(desk.text(IDC_SELECTED_COUNT), "1 of 2 selected");
    desk.press(IDC_SELECTED_ONLY);
    EXPECT_EQ(rowsOf(IDC_TABLES), "a|TABLE|||\n");
    desk.press(IDC_SELECTED_ONLY);
    list(IDC_TABLES).selectAll();
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_EDIT);
    EXPECT_EQ(typesOf(*desk.wizard().message), "b:R(y:S) a:R(x:N)");
    desk.click("back");
    EXPECT_EQ(list(IDC_TABLES).selectedRow(), -1);
    desk.click("back");
    desk.click("back");
    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
}

TEST_F(DatabaseFlow, SaysThatThereIsNoDataSource)
{
    start("");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(desk.text(IDC_HINT), "There are no data sources on this computer. Help explains how to set one up.");
        desk.click("next");
    }
    EXPECT_EQ(desk.page(), IDD_DATA_SOURCE);
}

TEST_F(DatabaseFlow, OffersACommandThatReadsTheSameTables)
{
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
    CString ini;
    for (const char* source : {"-d", "@d", "a=b"})
        ini += sqliteSource(source, "CREATE TABLE \" led\" (x int); CREATE TABLE z (x int)");
    start(ini);
    desk.importer = "ODBC importer";
    for (const int source : {0, 1, 2})
        for (const int table : {0, 1}) {
            choose(IDC_DATA_SOURCES, source);
            choose(IDC_TABLES, table);
            EXPECT_EQ(desk.wizard().message->beginEnum(), table) << "the name of the first can't be looked up";
            desk.walkTo(IDD_FINISH);
            const CString written = TempDir::read(desk.output);
            std::filesystem::remove(desk.output);
            const QString command = desk.wizard().activePage()->findChild<QLineEdit*>("command")->text();
            EXPECT_EQ(std::system((TEST_BUILD_DIR "/" + command.toStdString() + " -q").c_str()), 0);
            EXPECT_EQ(TempDir::read(desk.output), written);
            desk.click("back");
            desk.walkTo(IDD_DATA_SOURCE);
        }
    qunsetenv("SOURCE_DATE_EPOCH");
}

TEST_F(DatabaseFlow, AsksForTheLogonShowsTheDriversWordsAndGoesOn)
{
    PostgresServer server;
    CDatabase owner;
    owner.Open(server.connection("postgres"), CDatabase::readWrite, server.logon());
    owner.ExecuteSQL("CREATE TABLE t (x int)");
    start("[Broken]\nDriver=/no/such/driver.so\n" + sqliteSource("Good", "CREATE TABLE a (x int)") +
          "[Server]\nDriver=PostgreSQL Unicode\nServername=127.0.0.1\nDatabase=postgres\nPort=" +
          std::to_string(server.port) + "\n");
    choose(IDC_DATA_SOURCES, 0);
    EXPECT_THAT(desk.boxes.take(),
                testing::ElementsAre(testing::EndsWith("'/no/such/driver.so' : file not found (SQLSTATE 01000)")));
    answerLogons({{"", ""}});
    choose(IDC_DATA_SOURCES, 2);
    EXPECT_EQ(desk.page(), IDD_DATA_SOURCE) << "the user has cancelled";
    answerLogons({{server.user, "wrong"}, {"", server.password}}); // the user name is still filled in
    choose(IDC_DATA_SOURCES, 2);
    EXPECT_EQ(rowsOf(IDC_TABLES), "t|TABLE|postgres|public|\n");
    choose(IDC_TABLES, 0);
    desk.walkTo(IDD_FINISH);
    EXPECT_EQ(desk.wizard().activePage()->findChild<QLineEdit*>("command")->text().toStdString(),
              "typeforge-import odbc Server --table=t --output=" + desk.output + " --user=" + server.user);
    desk.click("back");
    desk.click("next");
    answerLogons({{server.user, server.password}});
    choose(IDC_DATA_SOURCES, 2);
    server.stop();
    choose(IDC_TABLES, 0);
    EXPECT_THAT(desk.boxes.take(),
                testing::ElementsAre(testing::StartsWith("The data source Server can't be read.\n")));
    desk.click("back");
    choose(IDC_DATA_SOURCES, 2);
    EXPECT_THAT(desk.boxes.take(), testing::ElementsAre(testing::EndsWith("(SQLSTATE 08001)")));
    choose(IDC_DATA_SOURCES, 1);
    choose(IDC_TABLES, 0);
    EXPECT_EQ(desk.page(), IDD_EDIT);
}

TEST_F(DatabaseFlow, NamesTheSourceAndTheFileThatIsMissing)
{
    const CString source = "Driver=SQLite3\nDatabase=/no/such/shop.db\n";
    start("[Gone]\n" + source + "[SQLite]\n" + source); // the second name is a part of the driver's words
    for (const CString name : {"Gone", "SQLite"}) {
        choose(IDC_DATA_SOURCES, name == "Gone" ? 0 : 1);
        EXPECT_THAT(desk.boxes.take(),
                    testing::ElementsAre("The data source " + name +
                                         " can't be opened.\n[SQLite]connect failed; its file is /no/such/shop.db: No "
                                         "such file or directory (SQLSTATE S1000)"));
        EXPECT_EQ(desk.page(), IDD_DATA_SOURCE);
    }
}

TEST_F(DatabaseFlow, ADriverThatCrashesIsABoxAndTheNextTryWorks)
{
    start("[Shaky]\nDriver=" TEST_BUILD_DIR "/libtest_driver.so\n");
    setenv("TEST_DRIVER_CRASHES", "", 1);
    choose(IDC_DATA_SOURCES, 0);
    EXPECT_THAT(desk.boxes.take(),
                testing::ElementsAre("The driver of the data source Shaky has crashed (Aborted); the connection is "
                                     "closed (SQLSTATE 08S01)"));
    unsetenv("TEST_DRIVER_CRASHES");
    if (desk.page() == IDD_DATABASE_TABLE)
        desk.click("back");
    choose(IDC_DATA_SOURCES, 0);
    EXPECT_EQ(desk.page(), IDD_DATABASE_TABLE);
    EXPECT_THAT(desk.boxes.take(), testing::IsEmpty());
}

} // namespace
