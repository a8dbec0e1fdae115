#include "wizard/Desk.h"

#include <QAccessible>
#include <QTimer>

namespace {

using Texts = std::vector<CString>;

void missingSource(Desk& desk)
{
    desk.type(IDC_INPUT_FILE, desk.dir.path("missing.dtd"));
}

void unselect(Desk& desk)
{
    desk.control<ListView>(IDC_IMPORTERS).clearSelection();
}

void brokenSource(Desk& desk)
{
    desk.importer = "XML data importer";
    desk.source = desk.dir.write("in/broken.xml", "<a>\n<b></a>");
    desk.click("back");
    desk.walkTo(IDD_SOURCE);
    desk.type(IDC_INPUT_FILE, desk.source);
}

// One row of the flow: on a page, with something done there, a button leads to a page; 0 is the end.
struct Step
{
    const char* name;
    int from;
    void (*arrange)(Desk&);
    const char* button;
    int to;
    Texts boxes = {};
};

void PrintTo(const Step& step, std::ostream* out)
{
    *out << step.name;
}

const Step kSteps[] = {
    {"WelcomeNext", IDD_FIRST, nullptr, "next", IDD_SOURCE_TYPE},
    {"ImporterNextWithoutOne",
     IDD_SOURCE_TYPE,
     unselect,
     "next",
     IDD_SOURCE_TYPE,
     {"Please select an importer before continuing"}},
    {"ImporterNextForFiles", IDD_SOURCE_TYPE, [](Desk& desk) { desk.choose("DTD importer"); }, "next", IDD_SOURCE},
    {"ImporterBack", IDD_SOURCE_TYPE, nullptr, "back", IDD_FIRST},
    {"SourceNext", IDD_SOURCE, [](Desk& desk) { desk.type(IDC_INPUT_FILE, desk.source); }, "next", IDD_EDIT},
    {"SourceNextMissing", IDD_SOURCE, missingSource, "next", IDD_SOURCE, {"Select source message"}},
    {"SourceNextBroken",
     IDD_SOURCE,
     brokenSource,
     "next",
     IDD_SOURCE,
     {"Error on line 2, column 8.\nError text is 'Opening and ending tag mismatch: b line 2 and a'."}},
    {"SourceBack", IDD_SOURCE, nullptr, "back", IDD_SOURCE_TYPE},
    {"TypesNext", IDD_EDIT, nullptr, "next", IDD_OUTPUT},
    {"TypesBack", IDD_EDIT, nullptr, "back", IDD_SOURCE},
    {"OutputNextToFile", IDD_OUTPUT, nullptr, "next", IDD_OUTPUT_FILE},
    {"OutputBack", IDD_OUTPUT, nullptr, "back", IDD_EDIT},
    {"OutputFileNext", IDD_OUTPUT_FILE, [](Desk& desk) { desk.type(IDC_OUTPUT_FILE, desk.output); }, "next",
     IDD_FINISH},
    {"OutputFileNextUnwritable",
     IDD_OUTPUT_FILE,
     [](Desk& desk) { desk.type(IDC_OUTPUT_FILE, "/no/such/folder/x"); },
     "next",
     IDD_OUTPUT_FILE,
     {"Can't open file /no/such/folder/x, error = 2"}},
    {"OutputFileNextUnnamed",
     IDD_OUTPUT_FILE,
     [](Desk& desk) { desk.type(IDC_OUTPUT_FILE, ""); },
     "next",
     IDD_OUTPUT_FILE,
     {"Can't open file , error = 2"}},
    {"OutputFileBack", IDD_OUTPUT_FILE, nullptr, "back", IDD_OUTPUT},
    {"FinishBack", IDD_FINISH, nullptr, "back", IDD_SOURCE_TYPE},
    {"FinishFinish", IDD_FINISH, nullptr, "finish", 0},
    {"WelcomeCancel", IDD_FIRST, nullptr, "cancel", 0},
    {"ImporterCancel", IDD_SOURCE_TYPE, nullptr, "cancel", 0},
    {"SourceCancel", IDD_SOURCE, nullptr, "cancel", 0},
    {"TypesCancel", IDD_EDIT, nullptr, "cancel", 0},
    {"OutputCancel", IDD_OUTPUT, nullptr, "cancel", 0},
    {"OutputFileCancel", IDD_OUTPUT_FILE, nullptr, "cancel", 0},
    {"FinishCancel", IDD_FINISH, nullptr, "cancel", 0},
};

class Flow : public testing::TestWithParam<Step>
{};

TEST_P(Flow, LeadsOn)
{
    const Step& step = GetParam();
    Desk desk;
    desk.walkTo(step.from);
    if (step.arrange != nullptr)
        step.arrange(desk);
    desk.click(step.button);
    EXPECT_EQ(desk.page(), step.to);
    EXPECT_EQ(desk.boxes.take(), step.boxes);
    EXPECT_EQ(std::filesystem::exists(desk.settingsFile()), step.button == std::string("finish"));
}

INSTANTIATE_TEST_SUITE_P(Steps, Flow, testing::ValuesIn(kSteps), [](const auto& row) { return row.param.name; });

TEST(FlowStart, IsTheWelcomePageUntilItIsHidden)
{
    Desk desk;
    EXPECT_EQ(desk.page(), IDD_FIRST);
    EXPECT_FALSE(desk.wizard().findChild<QAbstractButton*>("back")->isEnabled());
    desk.control<QAbstractButton>(IDC_HIDE_WELCOME).click();
    desk.walkTo(IDD_FINISH);
    desk.click("finish");
    desk.end();

    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
    desk.click("back");
    EXPECT_EQ(desk.page(), IDD_FIRST);
    EXPECT_TRUE(desk.control<QAbstractButton>(IDC_HIDE_WELCOME).isChecked());
}

// Ends with the OK result on Finish, with the cancel result on Escape; each page's caption is the window's title.
TEST(FlowStart, RunsModallyWithThePagesCaptions)
{
    Desk desk;
    std::vector<QString> titles;
    QTimer::singleShot(0, [&] {
        for (const int page :
             {IDD_FIRST, IDD_SOURCE_TYPE, IDD_SOURCE, IDD_EDIT, IDD_OUTPUT, IDD_OUTPUT_FILE, IDD_FINISH}) {
            desk.walkTo(page);
            titles.push_back(desk.wizard().windowTitle());
        }
        desk.click("finish");
    });
    EXPECT_EQ(desk.wizard().DoModal(), WizardSheet::resultOk);
    EXPECT_EQ(titles, (std::vector<QString>{"Typeforge - Introduction", "Typeforge - Select source type",
                                            "Typeforge - Select source", "Typeforge - Generated types",
                                            "Typeforge - Select output mode", "Typeforge - Select output file",
                                            "Typeforge - Finish"}));
    desk.end();
    QTimer::singleShot(0, [&] { QTest::keyClick(&desk.wizard(), Qt::Key_Escape); });
    EXPECT_EQ(desk.wizard().DoModal(), WizardSheet::resultCancel);
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

void enter(const std::string& text)
{
    press(Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), QString::fromStdString(text));
    press(Qt::Key_Return);
}

TEST(Keyboard, LeadsFromTheWelcomePageToTheWrittenFile)
{
    Desk desk;
    desk.wizard().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&desk.wizard()));
    press(Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget()->objectName().toInt(), IDC_IMPORTERS);
    press(Qt::Key_Down); // another importer, and the first again: each key makes one
    press(Qt::Key_Up);
    press(Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([] { return QApplication::focusWidget()->objectName().toInt() == IDC_OBJECT_PATH; }));
    press(Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.page() == IDD_SOURCE; }));
    enter(desk.source);
    EXPECT_EQ(desk.page(), IDD_EDIT);
    press(Qt::Key_Return);
    press(Qt::Key_B, Qt::AltModifier); // the page's own letter goes before the Back button's
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.control<QAbstractButton>(IDC_TO_BROKER).isChecked(); }));
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    enter(desk.output);
    EXPECT_EQ(desk.page(), IDD_FINISH);
    press(Qt::Key_Return);
    EXPECT_EQ(desk.page(), 0);
    EXPECT_NE(TempDir::read(desk.output).find("<order>"), std::string::npos);
}

// A combo box is named by the label beside it, every other control by itself.
bool hasSpokenName(QWidget* control)
{
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(control);
    return qobject_cast<QComboBox*>(control) != nullptr ? !spoken->relations(QAccessible::Label).empty()
                                                        : !spoken->text(QAccessible::Name).isEmpty();
}

TEST(Keyboard, FindsEveryControlNamedForAScreenReader)
{
    Desk desk;
    for (const int page : {IDD_FIRST, IDD_SOURCE_TYPE, IDD_SOURCE, IDD_EDIT, IDD_OUTPUT, IDD_OUTPUT_FILE, IDD_FINISH}) {
        desk.walkTo(page);
        for (QWidget* control : desk.wizard().findChildren<QWidget*>())
            if (control->isVisible() && (control->focusPolicy() & Qt::TabFocus) && control->focusProxy() == nullptr &&
                qobject_cast<QComboBox*>(control->parentWidget()) == nullptr) {
                EXPECT_TRUE(hasSpokenName(control)) << page << ": " << control->objectName().toStdString();
            }
    }
}

// Tab goes through the page, then through the buttons, and comes back.
TEST(Keyboard, TabReachesEveryControlInOrder)
{
    Desk desk;
    desk.walkTo(IDD_SOURCE);
    desk.wizard().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&desk.wizard()));
    std::vector<QString> names;
    for (int i = 0; i < 6; ++i) {
        names.push_back(QApplication::focusWidget()->objectName());
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(names, (std::vector<QString>{"1041", "1019", "back", "next", "cancel", "help"}));
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "1041");
}

} // namespace
