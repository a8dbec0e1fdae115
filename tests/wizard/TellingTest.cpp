// The information on the pages before and after an action.
#include "TestFolders.h"
#include "Ui/CopyRow.h"
#include "wizard/Desk.h"

#include <QClipboard>
#include <QLabel>
#include <QPlainTextEdit>
#include <gmock/gmock.h>

#include <sys/stat.h>

namespace {

struct Previewed
{
    const char* importer;
    const char* name;
    const char* content;
    const char* counts; // a pattern
} const kPreviewed[] = {
    {"DTD importer", "a.dtd", "<!ENTITY % x '(b)'>\n<!ELEMENT a %x;><!ELEMENT b (c)>",
     "As it stands: 1 type, 2 losses.\nIn full: 2 types, 1 loss."},
    {"DTD importer", "b.dtd", "<!ELEMENT a (b)><!ELEMENT b (#PCDATA)>",
     "As it stands: 1 type, no losses.\nIn full: 1 type, no losses."},
    {"XML Schema importer", "a.xsd",
     "<schema xmlns='http://www.w3.org/2001/XMLSchema'><element name='a' type='b'/></schema>",
     "As it stands: no types, this document does not contain a root element.\n"
     "In full: 1 type, 1 loss."},
    {"XML data importer", "a.xml", "<a><b/></a>", "1 type, no losses."},
    {"XML data importer", "b.xml", "<a>", "no types, Premature end of data in tag a line 1 .line 1.."},
    {"DTD importer", "c.dtd",
     "<!-- Gr\xFC\xDF"
     "e --><!ELEMENT a (b)>",
     "As it stands: 1 type, .*"},
    {"DTD importer", "none", nullptr, ""},
};

TEST(SourcePage, ShowsWhatWouldComeOfTheSource)
{
    for (const Previewed& row : kPreviewed) {
        SCOPED_TRACE(row.name);
        Desk desk;
        desk.importer = row.importer;
        desk.walkTo(IDD_SOURCE);
        auto& text = desk.control<QPlainTextEdit>(IDC_PREVIEW);
        EXPECT_FALSE(text.isVisible());
        desk.type(IDC_INPUT_FILE, row.content ? desk.dir.write("in/" + CString(row.name), row.content) : row.name);
        const auto isTold = [&] {
            const CString words = desk.text(IDC_COUNTS);
            return text.isVisible() && words.ends_with('.') && words.find("ounting ") == CString::npos;
        };
        EXPECT_EQ(QTest::qWaitFor(isTold, row.content ? 20'000 : 600), row.content != nullptr);
        EXPECT_THAT(desk.text(IDC_COUNTS), testing::MatchesRegex(row.counts));
        if (row.content) {
            EXPECT_EQ(text.toPlainText().toStdString(), toXmlText(row.content));
        }
        if (row.content && std::filesystem::remove(desk.text(IDC_INPUT_FILE))) {
            desk.click("next");
            EXPECT_EQ(desk.boxes.take(), Texts{"Select source message"});
            EXPECT_EQ(desk.text(IDC_COUNTS), "") << "the file is gone";
        }
        desk.type(IDC_INPUT_FILE, "/none");
        EXPECT_EQ(desk.text(IDC_COUNTS), "");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !text.isVisible(); }));
        EXPECT_EQ(desk.boxes.take(), Texts{});
    }
}

// A large source is counted only on request, and counting never blocks the page.
TEST(SourcePage, DropsWhatItCountsWhenTheChoiceChanges)
{
    Desk desk;
    CString dtd;
    for (int i = 0; i < 300'000; ++i)
        dtd += "<!ELEMENT e" + std::to_string(i) + " (f)>";
    const CString many = desk.dir.write("in/many.dtd", dtd), large = desk.dir.write("in/large.dtd", "<!ELEMENT a (b)>");
    std::filesystem::resize_file(large, 50'000'001);
    desk.walkTo(IDD_SOURCE);
    auto& button = desk.control<QAbstractButton>(IDC_COUNT_TYPES);
    desk.type(IDC_INPUT_FILE, many);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.text(IDC_COUNTS) == "Counting types ..."; }));
    desk.type(IDC_INPUT_FILE, large);
    EXPECT_TRUE(QTest::qWaitFor([&] { return button.isVisible(); }, 20'000)) << desk.text(IDC_COUNTS);
    EXPECT_EQ(desk.text(IDC_COUNTS), "The source has 50 MB.");
    button.click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return desk.text(IDC_COUNTS) == "Counting types ..."; }));
    EXPECT_FALSE(button.isVisible());
    desk.type(IDC_INPUT_FILE, many);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.text(IDC_COUNTS) == "Counting types ..."; }, 20'000));
    desk.type(IDC_INPUT_FILE, desk.source);
    desk.click("next");
    EXPECT_EQ(desk.page(), IDD_EDIT);
    EXPECT_EQ(desk.boxes.take(), Texts{});
}

TEST(TypesPage, ReadsInFullAtOnceWhereThatServes)
{
    Desk desk;
    desk.source = desk.dir.write("in/a.dtd", "<!ENTITY % a 'x'><!ENTITY % b '<!ELEMENT c (d)><!ELEMENT d (e)>'>%b;");
    desk.walkTo(IDD_EDIT);
    auto& button = desk.control<QAbstractButton>(IDC_READ_IN_FULL);
    ASSERT_TRUE(button.isVisible());
    std::filesystem::rename(desk.source, desk.dir.path("in/gone"));
    button.click();
    EXPECT_EQ(desk.boxes.take(), Texts{"Can't open file " + desk.source + ", error = 2"});
    std::filesystem::rename(desk.dir.path("in/gone"), desk.source);
    desk.click("next");
    desk.click("back");
    ASSERT_TRUE(button.isVisible()); // the offer stays
    button.click();
    EXPECT_EQ(desk.control<ListView>(IDC_TYPES).rowCount(), 2);
    EXPECT_FALSE(button.isVisible());
    EXPECT_EQ(desk.wizard().options.queryFullReading(), 1);
    desk.click("back");
    EXPECT_TRUE(desk.control<QAbstractButton>(IDC_FULL_READING).isChecked());
}

TEST(OutputFilePage, SuggestsANameAndSaysWhatWouldBeReplaced)
{
    Desk desk;
    desk.walkTo(IDD_OUTPUT_FILE);
    const CString suggested = desk.dir.path("in/order-types.xml");
    EXPECT_EQ(desk.text(IDC_OUTPUT_FILE), suggested);
    EXPECT_EQ(desk.text(IDC_OUTPUT_STATE), "");
    desk.click("next");
    desk.click("back");
    desk.source = desk.dir.write("in/other.v2.dtd", "<!ELEMENT a (b)>");
    desk.walkTo(IDD_OUTPUT);
    desk.click("next");
    EXPECT_EQ(desk.text(IDC_OUTPUT_FILE), desk.dir.path("in/other.v2-types.xml")); // the suggestion is unchanged
    const std::pair<CString, const char*> states[] = {
        {suggested, "The file exists, [0-9.]+ .*, of [0-9:]+; it will be replaced[.]"},
        {desk.dir.write("in/notes", "<!ELEMENT a (b)>"),
         "The file exists, 16 bytes, of [0-9:]+; it is not a type document, and will be replaced[.]"},
        {desk.source, "The file exists, .* will be replaced[.] It is the source of these types; .*"},
        {desk.dir.path("in"), "This is a folder[.] .*"},
        {desk.dir.path("in/new.xml"), ""},
    };
    for (const auto& [name, words] : states) {
        desk.type(IDC_OUTPUT_FILE, name);
        EXPECT_TRUE(QTest::qWaitFor([&, &pattern = words] {
            return testing::Matches(testing::MatchesRegex(pattern))(desk.text(IDC_OUTPUT_STATE));
        })) << desk.text(IDC_OUTPUT_STATE);
    }
    desk.click("next");
    desk.click("finish");
    desk.end();
    desk.walkTo(IDD_OUTPUT_FILE);
    EXPECT_EQ(desk.text(IDC_OUTPUT_FILE), desk.dir.path("in/new.xml"));
}

TEST(OutputFilePage, FramesANameThatIsMissing)
{
    Desk desk;
    for (const auto& [page, field] : {std::pair{IDD_SOURCE, IDC_INPUT_FILE}, {IDD_OUTPUT_FILE, IDC_OUTPUT_FILE}}) {
        desk.walkTo(page);
        desk.type(field, "");
        auto& edit = *desk.control<QComboBox>(field).lineEdit();
        const auto* frame = desk.wizard().activePage()->findChild<QWidget*>("redFrame");
        EXPECT_FALSE(frame->isVisible());
        desk.control<QWidget>(IDC_BROWSE).setFocus();
        desk.click("next");
        EXPECT_THAT(desk.boxes.take().front(), testing::AnyOf("Select source message", "Can't open file , error = 2"));
        EXPECT_THAT(desk.boxes.details, testing::StartsWith("The name of the file is missing."));
        EXPECT_TRUE(desk.wizard().focusWidget()->objectName().toInt() == field || edit.hasFocus());
        EXPECT_TRUE(frame->isVisible());
        EXPECT_EQ(frame->geometry(), desk.control<QWidget>(field).geometry());
        desk.type(field, "x");
        EXPECT_FALSE(frame->isVisible());
    }
}

TEST(FinishPage, SaysWhatWasDoneAndOpensIt)
{
    Desk desk;
    const std::string notes = desk.dir.path("notes");
    const std::string viewer = desk.dir.write("viewer", "#!/bin/sh\necho \"$1\" >>" + notes + "\n");
    ::chmod(viewer.c_str(), 0755);
    qputenv("TYPEFORGE_VIEWER", viewer.c_str());
    desk.output = desk.dir.path(CString(200, 'o') + ".xml");
    desk.walkTo(IDD_FINISH);
    const auto& done = desk.control<QLabel>(IDC_DONE);
    EXPECT_TRUE(QTest::qWaitFor([&] { return done.height() >= 2 * done.fontMetrics().height(); })) << done.height();
    EXPECT_THAT(desk.text(IDC_DONE), testing::MatchesRegex("2 types were written to " + desk.output + " \\(.*\\)[.]"));
    EXPECT_EQ(desk.wizard().focusWidget()->objectName(), "finish");
    const auto viewed = [&](const CString& lines) {
        return QTest::qWaitFor([&] { return std::filesystem::exists(notes) && TempDir::read(notes) == lines; });
    };
    desk.press(IDC_VIEW_FILE);
    EXPECT_TRUE(viewed(desk.output + "\n"));
    std::filesystem::remove(desk.output);
    desk.press(IDC_VIEW_FILE);
    EXPECT_EQ(desk.boxes.take(), Texts{desk.output + " no longer exists."});
    desk.press(IDC_OPEN_FOLDER);
    EXPECT_TRUE(viewed(desk.output + "\n" + desk.output.substr(0, desk.output.rfind('/')) + "\n"));
}

TEST(FinishPage, CopiesALongCommandWhole)
{
    CopyRow row("In a script:", "Copy");
    auto& field = *row.findChild<QLineEdit*>();
    for (const int length : {10, 2000, 2001, 100'000}) {
        const QString text = QString(length / 2, 'a') + QString(length - length / 2, 'b');
        row.setText(text);
        EXPECT_LE(field.text().size(), 2005);
        EXPECT_EQ(field.text() == text, length <= 2000);
        QApplication::clipboard()->clear();
        row.findChild<QAbstractButton*>()->click();
        EXPECT_EQ(QApplication::clipboard()->text(), text);
        QApplication::clipboard()->clear();
        field.selectAll();
        QTest::keySequence(&field, QKeySequence::Copy);
        EXPECT_EQ(QApplication::clipboard()->text(), text);
    }
}

} // namespace
