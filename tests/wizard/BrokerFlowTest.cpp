#include "Broker/IVorn.h"
#include "Files/SettingsStore.h"
#include "TestFolders.h"
#include "Wizard/Pages/Overwrite.h"
#include "Wizard/Windows/HelpWindow.h"
#include "wizard/Desk.h"

#include <QClipboard>
#include <QListWidget>
#include <QProgressBar>
#include <QTextEdit>
#include <QTimer>
#include <gmock/gmock.h>

#include <tuple>

namespace {

constexpr char kBlank[] = "This field cannot be left blank - please enter a value.";

// A desk at the login page, with an empty repository `local`. The types are t_line and order.
class BrokerDesk : public Desk
{
public:
    BrokerDesk()
    {
        qputenv("XDG_DATA_HOME", dir.path("data").c_str());
        source = dir.write("in/r.dtd", "<!ELEMENT r (b, a)><!ELEMENT a (x)><!ELEMENT b (x)>");
        wizard().options.setLastOutputSel(1);
        walkTo(IDD_LOGIN);
    }

    /// Sets the client library to be loaded from now on.
    static void useClient(const char* library)
    {
        SettingsStore settings;
        settings.setText(CString("SOFTWARE\\Classes\\CLSID\\") + kVornServerClass + "\\InprocServer32", "", library);
        ASSERT_TRUE(settings.save());
    }

    void logOn(const char* server, const char* port, const char* user, const char* password)
    {
        type(IDC_SERVER, server);
        control<QLineEdit>(IDC_PORT).setText(port);
        control<QAbstractButton>(user ? IDC_LOGON_BROKER : IDC_LOGON_TRUSTED).click();
        control<QComboBox>(IDC_USER).setEditText(user ? user : "UNUSED");
        control<QLineEdit>(IDC_PASSWORD).setText(password);
    }

    Texts results()
    {
        Texts lines;
        auto& box = control<QListWidget>(IDC_RESULTS);
        for (int i = 0; i < box.count(); ++i)
            lines.push_back(box.item(i)->text().toStdString());
        return lines;
    }

    // Clicks Next on the login page and clicks the given buttons of the overwrite dialogs; 0 closes a dialog. Returns
    // the texts of the dialogs.
    Texts create(std::vector<int> answers)
    {
        Texts questions;
        QTimer user;
        QObject::connect(&user, &QTimer::timeout, [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog == nullptr || dialog->objectName() != "1049")
                return;
            EXPECT_EQ(dialog->windowTitle(), "Overwrite confirmation");
            EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
            QString texts;
            for (const auto* edit : dialog->findChildren<QTextEdit*>()) // the question, then the details
                texts += (texts.isEmpty() ? "" : "|") + edit->toPlainText();
            questions.push_back(texts.toStdString());
            EXPECT_EQ(dialog->findChild<QWidget*>("1050")->property("text").toString(), texts.section('|', 0, 0));
            const int button = answers.at(questions.size() - 1);
            if (button == 0)
                dialog->close();
            else
                QTest::mouseClick(dialog->findChild<QAbstractButton*>(QString::number(button)), Qt::LeftButton);
        });
        user.start(1);
        click("next");
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(questions.size(), answers.size());
        return questions;
    }
};

// The typed values, and the effect of Next: the box, the focused control, the page.
struct Logon
{
    const char *server, *port, *user, *password;
    const char* box;
    int focus;
    int page = IDD_LOGIN;
} const kLogons[] = {
    {"", "1", "u", "p", kBlank, IDC_SERVER},
    {"local", "0", "u", "p", kBlank, IDC_PORT},
    {"local", "", "u", "p", kBlank, IDC_PORT},
    {"", "1", "", "", kBlank, IDC_USER},
    {"local", "0", "u", "", kBlank, IDC_PASSWORD},
    {"", "1", nullptr, "", kBlank, IDC_SERVER},
    {"local", "x", nullptr, "", "Please enter a positive integer.", IDC_PORT},
    {"local", "+5", nullptr, "", "Please enter a positive integer.", IDC_PORT},
    {"local", "-1", "", "", "Please enter a positive integer.", IDC_PORT},
    {"local", "4294967296", "u", "p", "Please enter a positive integer.", IDC_PORT},
    {"127.0.0.1", "1", "u", "p", "Unable to establish a connection to Broker", 0},
    {"local", "1", nullptr, "", nullptr, 0, IDD_CREATE_RESULT},
};

TEST(LoginPage, ChecksItsFieldsAndMovesTheFocus)
{
    for (const Logon& row : kLogons) {
        BrokerDesk desk;
        desk.logOn(row.server, row.port, row.user, row.password);
        desk.click("next");
        SCOPED_TRACE(testing::Message() << row.server << ':' << row.port << ' ' << (row.user ? row.user : "trusted"));
        EXPECT_EQ(desk.page(), row.page);
        EXPECT_EQ(desk.boxes.take(), row.box ? Texts{row.box} : Texts{});
        if (row.focus != 0) {
            EXPECT_EQ(desk.wizard().focusWidget()->objectName().toInt(), row.focus);
        }
    }
}

TEST(LoginPage, ShowsEachFailureAndKeepsTheChoices)
{
    const std::pair<const char*, const char*> failures[] = {
        {"address-error", "Unable to establish a connection to Broker"},
        {"logon-error", "Unable to establish a connection to Broker"},
        {"logon-failure", "Login Failed - Please check your Username/Password."},
        {"logon-nothing", "Connection Failure."},
        {"repository-error", "Repository Error (the client's words)"},
        {"repository-failure", "Generic Error."},
        {"repository-nothing", "Error - Repository not established."},
        {"none", "1 errors encountered during the creation process.  Please consult the list on the following page."},
    };
    BrokerDesk desk;
    desk.useClient("/no/such/library.so");
    desk.logOn("s", "77", "anna", "p");
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(), Texts{"The Broker COM client is not available or is of the wrong version"});
    EXPECT_EQ(desk.wizard().options.queryBrokerPort(), 77u);
    EXPECT_EQ(desk.wizard().options.queryPwd(), "p");
    desk.useClient(TEST_BUILD_DIR "/libtestclient1.so");
    for (const auto& [server, text] : failures) {
        EXPECT_EQ(desk.page(), IDD_LOGIN);
        desk.type(IDC_SERVER, server);
        desk.click("next");
        EXPECT_EQ(desk.boxes.take(), Texts{text});
    }
    EXPECT_EQ(desk.results(), (Texts{"a created successfully", "b modifed", "r - creation error"})); // codes 0, 1, 99
    EXPECT_EQ(desk.text(IDC_TOTALS), "3 types: 1 created, 1 replaced, 1 failed");
    desk.press(IDC_FAILURES_ONLY);
    desk.press(IDC_COPY);
    EXPECT_EQ(QApplication::clipboard()->text(), "r - creation error\n");
    desk.press(IDC_FAILURES_ONLY);
    EXPECT_EQ(desk.results().size(), 3);
}

TEST(LoginPage, TakesUserNamesInUpperCaseAndOnlyForABrokerLogon)
{
    BrokerDesk desk;
    auto& user = desk.control<QComboBox>(IDC_USER);
    EXPECT_EQ(user.currentText(), user.currentText().toUpper()); // the login name
    user.clearEditText();
    QTest::keyClicks(user.lineEdit(), "anna m");
    EXPECT_EQ(user.currentText(), "ANNA M");
    auto& password = desk.control<QLineEdit>(IDC_PASSWORD);
    EXPECT_EQ(password.echoMode(), QLineEdit::Password);
    for (const bool trusted : {true, false}) {
        desk.press(trusted ? IDC_LOGON_TRUSTED : IDC_LOGON_BROKER);
        EXPECT_EQ(password.isEnabled() + user.isEnabled(), trusted ? 0 : 2);
    }
    auto* server = desk.control<QComboBox>(IDC_SERVER).lineEdit();
    QTest::keyClicks(server, "local");
    EXPECT_FALSE(user.isEnabled());
    desk.control<QLineEdit>(IDC_PORT).setFocus();
    QTest::keyClick(&desk.control<QLineEdit>(IDC_PORT), Qt::Key_Tab);
    EXPECT_EQ(desk.wizard().focusWidget()->objectName().toInt(), IDC_LOGON_TRUSTED);
    QTest::keyClicks(server, "host");
    EXPECT_TRUE(user.isEnabled());
    desk.press(IDC_LOGON_TRUSTED);
    QTest::keyClick(server, Qt::Key_Backspace);
    EXPECT_FALSE(user.isEnabled()); // because the user chose the trusted logon
    desk.click("back");
    EXPECT_EQ(desk.page(), IDD_OUTPUT);
    EXPECT_EQ(desk.wizard().focusWidget()->objectName().toInt(), IDC_TO_BROKER); // the earlier choice
}

TEST(OverwriteDialog, ShowsTheWholeOfALongNameAndTakesALetter)
{
    OverWriteDlg dialog(nullptr);
    dialog.text = CString(400, 'x') + " already exists.\nOverwrite?";
    QTimer::singleShot(0, &dialog, [&dialog] {
        const auto& text = *dialog.findChild<QTextEdit*>();
        EXPECT_EQ(text.toPlainText().toStdString(), dialog.text);
        EXPECT_LE(text.document()->size().height(), text.height());
        EXPECT_LE(dialog.width(), 640);
        QTest::keyClick(&dialog, Qt::Key_A);
    });
    dialog.DoModal();
    EXPECT_EQ(dialog.choice, OverwriteChoice::yesToAll); // by its letter, without Alt
}

TEST(BrokerRoad, CreatesTheTypesAndAsksBeforeItReplacesOne)
{
    const std::tuple<std::vector<int>, Texts, const char*> runs[] = {
        {{}, {"a created successfully", "b created successfully", "r created successfully"}, ""},
        {{IDC_YES, IDC_NO, 0}, {"a modifed", "b skipped", "r skipped"}, " --overwrite=ask"},
        {{IDC_YES_TO_ALL}, {"a modifed", "b modifed", "r modifed"}, " --overwrite=all"},
        {{IDC_NO, IDC_NO_TO_ALL}, {"a skipped", "b skipped", "r skipped"}, " --overwrite=ask"},
        {{IDC_YES, IDC_STOP},
         {"a modifed", "b not created, since the creation was cancelled",
          "r not created, since the creation was cancelled"},
         " --overwrite=ask"},
    };
    BrokerDesk desk;
    desk.logOn("local", "1", nullptr, "");
    for (const auto& [answers, lines, overwrite] : runs) {
        EXPECT_EQ(desk.page(), IDD_LOGIN);
        for (const CString& question : desk.create(answers))
            EXPECT_THAT(question,
                        testing::MatchesRegex("\\\\sys\\\\rosettanet\\\\r\\\\[abr] already exists.\nOverwrite[?]"));
        EXPECT_EQ(desk.results(), lines);
        EXPECT_THAT(desk.wizard().script.text(*desk.wizard().message),
                    testing::EndsWith(CString("r.dtd --create=local:1") + overwrite));
        desk.click("back");
    }
    desk.create({IDC_NO_TO_ALL});
    EXPECT_EQ(desk.scrollsAt(380), 0);
    EXPECT_EQ(desk.wizard().findChild<QProgressBar*>("1042")->value(), 3);
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_FINISH);
    EXPECT_EQ(desk.text(IDC_DONE), "On the broker local:1: 3 types: 3 skipped.");
    desk.click("back");
    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
    EXPECT_NE(desk.wizard().message, nullptr); // a new importer of the same kind
    EXPECT_EQ(desk.wizard().message->beginEnum(), 0);
}

// The clicks go through the window, which a modal dialog may block.
TEST(OverwriteDialog, LeavesItsHelpUsable)
{
    BrokerDesk desk;
    desk.logOn("local", "1", nullptr, "");
    desk.create({});
    desk.click("back");
    QWidget& help = desk.wizard().helpWindow();
    const auto clickOn = [](QWidget& window, const char* button) {
        auto* target = window.findChild<QWidget*>(button);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, target->mapTo(&window, target->rect().center()));
    };
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog == nullptr)
            return;
        user.stop();
        QTest::keyClick(dialog, Qt::Key_F1);
        EXPECT_TRUE(help.isVisible());
        clickOn(desk.wizard(), "cancel");
        EXPECT_TRUE(desk.wizard().isVisible() && dialog->isVisible());
        clickOn(help, "close");
        EXPECT_FALSE(help.isVisible());
        QTest::keyClick(dialog, Qt::Key_T);
    });
    user.start(1);
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_CREATE_RESULT);
}

TEST(BrokerRoad, NamesTheOtherSourceOfAChangedType)
{
    BrokerDesk desk;
    desk.logOn("local", "1", nullptr, "");
    desk.create({});
    const CString first = desk.source;
    desk.end();
    desk.source = desk.dir.write("in/other.dtd", "<!ELEMENT r (b, a)><!ELEMENT a (y)><!ELEMENT b (x)>");
    desk.wizard().options.setLastOutputSel(1);
    desk.walkTo(IDD_LOGIN);
    desk.logOn("local", "1", nullptr, "");
    const Texts questions = desk.create({IDC_YES, IDC_NO, IDC_NO});
    EXPECT_THAT(questions[0], testing::MatchesRegex(".*Overwrite[?][|]The existing type is different and comes from " +
                                                    first + " \\(20[-0-9]+T[0-9:]+Z\\)[.]"));
    EXPECT_THAT(questions[1], testing::EndsWith("Overwrite?")); // this type is the same in both
}

} // namespace
