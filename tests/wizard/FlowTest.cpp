#include "wizard/Desk.h"

#include <QLabel>

namespace {

constexpr int kFileRoad[] = {IDD_FIRST, IDD_SOURCE_TYPE, IDD_SOURCE, IDD_EDIT, IDD_OUTPUT, IDD_OUTPUT_FILE, IDD_FINISH};

// A step of the flow: on a page, with a text typed into its field, a button leads to a page; 0 is the end.
const struct Step
{
    int from;
    const char* button;
    int to;
    const char* typed = nullptr;
    const char* box = nullptr;
} kSteps[] = {
    {IDD_FIRST, "next", IDD_SOURCE_TYPE},
    {IDD_SOURCE_TYPE, "next", IDD_SOURCE},
    {IDD_SOURCE_TYPE, "next", IDD_SOURCE_TYPE, "", "Please select an importer before continuing"},
    {IDD_SOURCE_TYPE, "back", IDD_FIRST},
    {IDD_SOURCE, "next", IDD_EDIT, "../in/order.dtd"},
    {IDD_SOURCE, "next", IDD_SOURCE, "missing.dtd", "Select source message"},
    {IDD_SOURCE, "back", IDD_SOURCE_TYPE},
    {IDD_EDIT, "next", IDD_OUTPUT},
    {IDD_EDIT, "back", IDD_SOURCE},
    {IDD_OUTPUT, "next", IDD_OUTPUT_FILE},
    {IDD_OUTPUT, "back", IDD_EDIT},
    {IDD_OUTPUT_FILE, "next", IDD_FINISH, "out.xml"},
    {IDD_OUTPUT_FILE, "next", IDD_OUTPUT_FILE, "/no/such/folder/x", "Can't open file /no/such/folder/x, error = 2"},
    {IDD_OUTPUT_FILE, "next", IDD_OUTPUT_FILE, "", "Can't open file , error = 2"},
    {IDD_OUTPUT_FILE, "back", IDD_OUTPUT},
    {IDD_FINISH, "back", IDD_SOURCE_TYPE},
    {IDD_FINISH, "finish", 0},
    {IDD_FIRST, "cancel", 0},
    {IDD_SOURCE_TYPE, "cancel", 0},
    {IDD_SOURCE, "cancel", 0},
    {IDD_EDIT, "cancel", 0},
    {IDD_OUTPUT, "cancel", 0},
    {IDD_OUTPUT_FILE, "cancel", 0},
    {IDD_FINISH, "cancel", 0},
};

TEST(Flow, LeadsOn)
{
    for (const Step& step : kSteps) {
        SCOPED_TRACE(testing::Message() << step.from << ' ' << step.button << ' ' << (step.typed ? step.typed : ""));
        Desk desk;
        desk.walkTo(step.from);
        if (step.typed && step.from == IDD_SOURCE_TYPE)
            desk.control<ListView>(IDC_IMPORTERS).clearSelection();
        else if (step.typed)
            desk.type(step.from == IDD_SOURCE ? IDC_INPUT_FILE : IDC_OUTPUT_FILE, step.typed);
        desk.click(step.button);
        EXPECT_EQ(desk.page(), step.to);
        EXPECT_EQ(desk.boxes.take(), step.box ? Texts{step.box} : Texts{});
        EXPECT_EQ(std::filesystem::exists(desk.settingsFile()), step.button == CString("finish"));
    }
}

TEST(Flow, ScrollsAWelcomeThatIsTooLongForTheWindow)
{
    Desk desk;
    desk.wizard().resize(300, 200);
    QApplication::processEvents();
    const auto& welcome = desk.control<QLabel>(IDC_WELCOME);
    EXPECT_GE(welcome.height(), welcome.heightForWidth(welcome.width()));
}

TEST(Flow, StartsOnTheWelcomePageUntilItIsHidden)
{
    Desk desk;
    EXPECT_EQ(desk.page(), IDD_FIRST);
    EXPECT_FALSE(desk.wizard().findChild<QAbstractButton*>("back")->isEnabled());
    desk.press(IDC_HIDE_WELCOME);
    desk.walkTo(IDD_FINISH);
    desk.click("finish");
    desk.end();

    EXPECT_EQ(desk.page(), IDD_SOURCE_TYPE);
    desk.click("back");
    EXPECT_EQ(desk.page(), IDD_FIRST);
    EXPECT_TRUE(desk.control<QAbstractButton>(IDC_HIDE_WELCOME).isChecked());
}

// The second run starts with the choices of the first.
TEST(Flow, FinishStoresWhatWasChosen)
{
    Desk desk;
    const CString first = desk.dir.write("in/a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'/>");
    desk.importer = "XML Schema importer";
    desk.walkTo(IDD_SOURCE);
    desk.type(IDC_INPUT_FILE, first);
    desk.click("next");
    desk.boxes.take();
    desk.walkTo(IDD_SOURCE);
    desk.click("back");
    desk.importer = "DTD importer";
    desk.walkTo(IDD_FINISH);
    desk.click("finish");
    desk.end();
    const CString stored = TempDir::read(desk.settingsFile());
    for (const CString& part :
         {CString("InFiles\": {\n    \"a\": \"") + desk.source + "\",\n    \"b\": \"" + first + '"',
          CString("OutFiles\": {\n    \"a\": \"") + desk.output + '"', CString("\"LastImporter\": 0"),
          CString("\"LastOutputMode\": 0"), "Input folder\": \"" + desk.dir.path("start") + '"'})
        EXPECT_NE(stored.find(part), CString::npos) << part << " in " << stored;
    desk.walkTo(IDD_SOURCE);
    EXPECT_EQ(desk.text(IDC_INPUT_FILE), desk.source);
    EXPECT_EQ(desk.control<QComboBox>(IDC_INPUT_FILE).itemText(1).toStdString(), first);
    desk.walkTo(IDD_OUTPUT_FILE);
    EXPECT_EQ(desk.text(IDC_OUTPUT_FILE), desk.output);
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

TEST(Keyboard, LeadsThroughAPageAndToItsLetters)
{
    Desk desk;
    desk.wizard().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&desk.wizard()));
    press(Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget()->objectName().toInt(), IDC_IMPORTERS);
    press(Qt::Key_Down); // another importer, then the first again: each key creates one
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    std::vector<QString> names; // Tab visits the page, then the buttons, and wraps around
    for (int i = 0; i < 8; ++i, press(Qt::Key_Tab))
        names.push_back(QApplication::focusWidget()->objectName());
    EXPECT_EQ(names, (std::vector<QString>{"1041", "1019", "1103", "back", "next", "cancel", "help", "1041"}));
    desk.walkTo(IDD_OUTPUT);
    press(Qt::Key_B, Qt::AltModifier); // the page's control has the letter, not Back
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.control<QAbstractButton>(IDC_TO_BROKER).isChecked(); }));
    EXPECT_EQ(desk.page(), IDD_OUTPUT);
    press(Qt::Key_K, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.page() == IDD_EDIT; }));
}

} // namespace
