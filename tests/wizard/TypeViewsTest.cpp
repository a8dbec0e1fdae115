#include "Base/Progress.h"
#include "Types/TypeStructure.h"
#include "Wizard/Windows/Diagram.h"
#include "Wizard/Windows/DiagramView.h"
#include "Wizard/Windows/DocumentWindow.h"
#include "Wizard/Windows/XmlHighlighter.h"
#include "wizard/Desk.h"

#include <QApplication>
#include <QClipboard>
#include <QGraphicsView>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextLayout>
#include <QTreeView>
#include <gmock/gmock.h>

namespace {

const char* const kCycle =
    "<!ELEMENT a (b*, c)><!ELEMENT b (a, d)><!ELEMENT c EMPTY><!ELEMENT d (e)><!ELEMENT e EMPTY>";

// A user on the page of types, with one selected and its structure beside the list.
struct TypesDesk : Desk
{
    explicit TypesDesk(const std::string& dtd = kCycle, int row = 0)
    {
        source = dir.write("in/views.dtd", dtd);
        walkTo(IDD_EDIT);
        button("showStructure").setChecked(true);
        QApplication::processEvents(); // gives the pane its width
        select(row);
    }

    QAbstractButton& button(const char* name) { return *wizard().activePage()->findChild<QAbstractButton*>(name); }
    QTreeView& tree() { return *wizard().activePage()->findChild<QTreeView*>("structure"); }
    ListView& list() { return control<ListView>(IDC_TYPES); }
    void select(int row) { list().setCurrentIndex(list().model()->index(row, 0)); }
    CString selected() { return list().selectedRow() < 0 ? "" : list().cell(list().selectedRow(), 0); }

    template <class Window>
    Window* window(const char* name)
    {
        return wizard().findChild<Window*>(name);
    }
};

// Returns what the tree shows with rows opened down to `depth`: "name:type", with the rows below in brackets.
CString opened(QTreeView& tree, const QModelIndex& index, int depth)
{
    const QAbstractItemModel& model = *tree.model();
    CString text;
    tree.expand(index);
    for (int row = 0; row < model.rowCount(index); ++row) {
        const QModelIndex name = model.index(row, 0, index);
        text += (row > 0 ? " " : "") + name.data().toString().toStdString();
        const CString type = name.siblingAtColumn(1).data().toString().toStdString();
        text += type.empty() ? "" : ":" + type;
        if (depth > 1 && model.hasChildren(name))
            text += "(" + opened(tree, name, depth - 1) + ")";
    }
    return text;
}

TEST(StructureOfAType, OpensInPlaceMarksCyclesAndTellsUsers)
{
    TypesDesk desk;
    Texts seen;
    for (int row = 0; row < desk.list().rowCount(); ++row) {
        desk.select(row);
        seen.push_back(desk.selected() + ": " + opened(desk.tree(), {}, 4));
    }
    EXPECT_EQ(
        seen,
        (Texts{"d: e:String Used by(b:record(t_b:table(a:record)))",
               "b: a:a(b:table of b (again) c:String) d:d(e:String) Used by(t_b:table(a:record(b:record (again))))",
               "a: b:table of b(a:a (again) d:d(e:String)) c:String Used by(b:record(t_b:table(a:record (again))))",
               "t_b: (each):b(a:a(b:table of b (again) c:String) d:d(e:String)) Used by(a:record(b:record(t_b:table "
               "(again))))"}));
}

TEST(StructureOfAType, JumpsByEnterAndDoubleClickAlsoPastAFilter)
{
    TypesDesk desk;
    desk.list().setFilter("b");
    desk.select(0);
    EXPECT_EQ(desk.selected(), "b");
    desk.tree().setCurrentIndex(desk.tree().model()->index(0, 0));
    QTest::keyClick(&desk.tree(), Qt::Key_Return);
    EXPECT_EQ(desk.selected(), "a");
    const QPoint first = desk.tree().visualRect(desk.tree().model()->index(0, 0)).center();
    QTest::mouseClick(desk.tree().viewport(), Qt::LeftButton, {}, first);
    QTest::mouseDClick(desk.tree().viewport(), Qt::LeftButton, {}, first);
    EXPECT_EQ(desk.selected(), "b");
    EXPECT_EQ(desk.page(), IDD_EDIT);
}

TEST(StructureOfAType, ComesWithTheWidthOrByItsButton)
{
    TypesDesk desk;
    desk.button("showStructure").setChecked(false);
    EXPECT_FALSE(desk.tree().isVisible());
    desk.wizard().resize(desk.wizard().width() * 2, desk.wizard().height());
    EXPECT_TRUE(desk.tree().isVisible());
    desk.wizard().resize(desk.wizard().width() / 2, desk.wizard().height());
    EXPECT_FALSE(desk.tree().isVisible());
}

TEST(StructureOfAType, AnswersAtOnceForFiftyThousandTypes)
{
    std::string dtd;
    for (int i = 0; i < 50000; ++i) {
        dtd += "<!ELEMENT e" + std::to_string(i) + " (";
        for (int k = 1; k < 8; ++k)
            dtd += "e" + std::to_string((i * 7 + k * k) % 50000) + (k % 2 != 0 ? "*," : ",");
        dtd += "e0)>";
    }
    TypesDesk desk(dtd, 4);
    for (int step = 0; step < 200; ++step) { // down through cycles
        QTest::keyClick(&desk.tree(), Qt::Key_Right);
        QTest::keyClick(&desk.tree(), Qt::Key_Down);
    }
    QTest::keyClick(&desk.tree(), Qt::Key_Asterisk); // would expand without end
    desk.button("showPicture").click();
    EXPECT_EQ(desk.window<QLabel>("status")->text().toStdString(), "3 types; double-click a type to continue from it.");
    auto& depth = *desk.window<QComboBox>("depth");
    depth.setCurrentIndex(3);
    Q_EMIT depth.activated(3);
    EXPECT_EQ(desk.window<QLabel>("status")->text(), "The nearest 200 types are shown; there are more.");
}

TEST(TypeWindow, ComesUpWhereNoViewerStarts)
{
    TypesDesk desk;
    qputenv("TMP", desk.dir.path().c_str());
    for (const char* viewer : {"/no/such/viewer", "false"}) {
        qputenv("TYPEFORGE_VIEWER", viewer);
        desk.press(IDC_VIEW);
        ASSERT_TRUE(QTest::qWaitFor([&] { return desk.window<QWidget>("documentWindow") != nullptr; })) << viewer;
        EXPECT_EQ(desk.window<QPlainTextEdit>("document")->toPlainText().toStdString(),
                  R"xml(<BROKERTYPEDESCRIPTION NAME="\sys\rosettanet\a\d" DESCRIPTION="d (Automatically created)">
  <ROW>
    <FIELD NAME="e" DESCRIPTION="e (Automatically created)" TYPE="String"/>
  </ROW>
</BROKERTYPEDESCRIPTION>)xml");
        EXPECT_EQ(desk.window<QLabel>("status")->text(), "No viewer for XML files could be started.");
        delete desk.window<QWidget>("documentWindow");
    }
    qputenv("TYPEFORGE_VIEWER", "true");
    desk.press(IDC_VIEW);
    QTest::qWait(300);
    EXPECT_EQ(desk.window<QWidget>("documentWindow"), nullptr);
}

// A large document arrives in pieces; copying and searching use all of it.
TEST(TypeWindow, FillsWithALargeDocument)
{
    CString lines;
    for (int i = 0; i < 50'000; ++i)
        lines += "line " + std::to_string(i) + "\n";
    lines += "the end";
    DocumentWindow window(nullptr, "x", lines, {}, DocumentWindow::ofReport);
    const auto& text = *window.findChild<QPlainTextEdit*>("document");
    EXPECT_LT(text.document()->blockCount(), 50'000);
    window.findChild<QAbstractButton*>("copy")->click();
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), lines);
    window.findChild<QLineEdit*>("find")->setText("the end");
    window.findChild<QAbstractButton*>("findNext")->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return text.textCursor().selectedText() == "the end"; }, 20'000));
    EXPECT_EQ(text.toPlainText().toStdString(), lines);
}

TEST(XmlHighlighter, ColoursCommentsOverTheirLinesAndValuesInBothQuotes)
{
    QTextDocument document("<!-- a --><b/>\n<!-- <b\n<c/> --> d\nc=\"e\" f='gh' don't can't");
    XmlHighlighter highlighter(&document, QPalette());
    highlighter.rehighlight();
    std::vector<int> lengths; // of the parts with a colour
    for (QTextBlock line = document.begin(); line.isValid(); line = line.next())
        for (const QTextLayout::FormatRange& part : line.layout()->formats())
            lengths.push_back(part.length);
    EXPECT_THAT(lengths, testing::ElementsAre(10, 4, 7, 8, 1, 3, 1, 4));
}

TEST(TypeWindow, FindsRoundTheEndsAndCopies)
{
    TypesDesk desk(kCycle, 2);
    desk.list().actions()[1]->trigger();
    auto& text = *desk.window<QPlainTextEdit>("document");
    auto& status = *desk.window<QLabel>("status");
    desk.window<QLineEdit>("find")->setText("FIELD");
    Texts seen;
    for (const char* button : {"findNext", "findNext", "findNext", "findPrevious"}) {
        desk.window<QAbstractButton>(button)->click();
        seen.push_back(std::to_string(text.textCursor().selectionStart()) + status.text().toStdString());
    }
    const int width = desk.window<QWidget>("documentWindow")->minimumSizeHint().width();
    EXPECT_LE(width, 450); // a small screen is twice as wide
    desk.window<QLineEdit>("find")->setText(QString(180, 'x'));
    desk.window<QAbstractButton>("findNext")->click();
    EXPECT_EQ(desk.window<QWidget>("documentWindow")->minimumSizeHint().width(), width);
    desk.window<QLineEdit>("find")->setText("no such");
    desk.window<QAbstractButton>("findNext")->click();
    seen.push_back(status.text().toStdString());
    desk.window<QAbstractButton>("copy")->click();
    seen.push_back(QApplication::clipboard()->text().toStdString());
    EXPECT_EQ(seen, (Texts{"104", "195", "104Continued from the start.", "195Continued from the end.",
                           "There is no \"no such\".", "FIELD"}));

    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    answerFileDialog(desk.dir.path("a.xml"));
    desk.window<QAbstractButton>("save")->click();
    const QString shown = text.toPlainText(); // one tag a line, unlike the file
    EXPECT_EQ(TempDir::read(desk.dir.path("a.xml")), QString(shown).remove(QRegularExpression("\n *")).toStdString());
}

TEST(PictureOfTypes, IsZoomedMovedAndSaved)
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    TypesDesk desk;
    desk.select(desk.list().rowCount() - 1);
    desk.button("showPicture").click();
    auto& view = *desk.window<QGraphicsView>("picture");
    EXPECT_LE(desk.window<QWidget>("diagramWindow")->minimumSizeHint().width(), 450);
    const QTransform own = view.transform();
    QTest::keyClicks(&view, "++");
    EXPECT_DOUBLE_EQ(view.transform().m11(), own.m11() * 1.5625);
    QTest::keyClicks(&view, "-0");
    EXPECT_EQ(view.transform(), own);
    const struct
    {
        const char *typed, *saved;
        int types = 0;
    } names[] = {{"p.svg", "p.svg"}, {"p.PNG", "p.PNG"}, {"q.svg", "q.png", 1}, {"r", "r.png", 1}, {"s", "s.svg"}};
    for (const auto& [typed, saved, types] : names) {
        answerFileDialog(desk.dir.path(typed), types);
        desk.window<QAbstractButton>("save")->click();
        EXPECT_EQ(desk.window<QLabel>("status")->text().toStdString(), "Saved as " + desk.dir.path(saved) + ".");
    }
    EXPECT_EQ(QImage(QString::fromStdString(desk.dir.path("p.PNG"))).size(), (view.sceneRect().size() * 2).toSize());
    const CString svg = TempDir::read(desk.dir.path("p.svg"));
    for (const char* text : {">b*</text>", ">String</text>", ">a</text>"})
        EXPECT_THAT(svg, testing::HasSubstr(text));
}

TEST(PictureOfTypes, HasNoBoxToEnterWithoutALayout)
{
    const std::unique_ptr<MsgBase> message(g_amud[0]->create());
    const TypeGraph graph(TypeStructure(*message), {}, 1);
    DiagramView view;
    bool isEntered = false;
    QObject::connect(&view, &DiagramView::boxEntered, &view, [&] { isEntered = true; });
    view.showDiagram(std::make_shared<const Diagram>(graph, view.palette(), view.font()));
    view.zoom(-10);
    view.resize(50, 50);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_FALSE(isEntered);
}

// A user of the picture window, clicking on boxes.
struct PictureDesk : TypesDesk
{
    explicit PictureDesk(const std::string& dtd, int row) : TypesDesk(dtd, row) { button("showPicture").click(); }

    DiagramView& view() { return *window<DiagramView>("picture"); }
    const Diagram& diagram() { return *view().queryDiagram(); }
    CString status() { return window<QLabel>("status")->text().toStdString(); }
    CString title() { return window<QWidget>("diagramWindow")->windowTitle().toStdString(); }
    QPoint place(std::size_t box) { return view().mapFromScene(diagram().areaOf(box).center()); }
    void click(std::size_t box) { QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, place(box)); }
    void enter(std::size_t box) { QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, place(box)); }
    void choose(const char* combo, int index)
    {
        window<QComboBox>(combo)->setCurrentIndex(index);
        Q_EMIT window<QComboBox>(combo)->activated(index);
    }
};

TEST(PictureOfTypes, LeadsFromTypeToTypeAndSelectsThem)
{
    PictureDesk desk(kCycle, 2);
    EXPECT_EQ(desk.status(), "3 types");
    desk.click(1);
    EXPECT_EQ(desk.selected(), "b");
    EXPECT_EQ(desk.wizard().activePage()->findChild<QLabel*>("structureTitle")->text(), "b");
    QTest::keyClick(&desk.view(), Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(desk.selected(), "d");
    QTest::keyClick(&desk.view(), Qt::Key_Return);
    EXPECT_EQ(desk.title() + ": " + desk.status(), "d - Typeforge picture: No other type");
    desk.choose("direction", 1);
    desk.choose("depth", 0);
    EXPECT_EQ(desk.status(), "2 types; double-click a type to continue from it.");
    desk.enter(1);
    EXPECT_EQ(desk.title(), "b - Typeforge picture");
    for (const char* before : {"d", "a"}) {
        desk.window<QAbstractButton>("pictureBack")->click();
        EXPECT_EQ(desk.title(), before + CString(" - Typeforge picture"));
    }
    EXPECT_FALSE(desk.window<QAbstractButton>("pictureBack")->isEnabled());
    desk.Desk::click("next");
    desk.enter(1);
    EXPECT_EQ(desk.status(), "The types have changed since; this picture shows the earlier ones.");
}

// A root with many children, each with a child of its own.
std::string wideDtd(int children)
{
    std::string root = "<!ELEMENT r (c0", others;
    for (int i = 0; i < children; ++i) {
        root += i == 0 ? "" : ",c" + std::to_string(i);
        others += "<!ELEMENT c" + std::to_string(i) + " (x" + std::to_string(i) + ")><!ELEMENT x" + std::to_string(i) +
                  " (y)>";
    }
    return root + ")>" + others;
}

TEST(PictureOfTypes, OpensWithTheNeighboursWhereThereIsMuch)
{
    PictureDesk desk(wideDtd(35), 0); // 71 types; row 0 is an x, which one c uses
    EXPECT_EQ(desk.status(), "No other type");
    desk.select(desk.list().rowCount() - 1);
    delete desk.window<QWidget>("diagramWindow");
    desk.button("showPicture").click();
    EXPECT_EQ(desk.status(), "36 types; double-click a type to continue from it.");
    desk.choose("depth", 1);
    EXPECT_EQ(desk.diagram().boxCount(), 71u);
    QTest::keyClick(&desk.view(), Qt::Key_Right, Qt::ControlModifier);
    const CString chosen = desk.selected();
    QTest::keyPress(&desk.view(), Qt::Key_Control, Qt::ControlModifier); // alone, above other boxes
    EXPECT_EQ(desk.selected(), chosen);
}

TEST(PictureOfTypes, BoundsAndCancelsAPng)
{
    std::string chain;
    for (int i = 0; i < 190; ++i)
        chain += "<!ELEMENT an_element_with_a_long_name_" + std::to_string(i) + " (an_element_with_a_long_name_" +
                 std::to_string(i + 1) + ")>";
    PictureDesk desk(chain, 189);
    desk.choose("depth", 3);
    double scale = 0;
    EXPECT_EQ(pngSize(desk.diagram(), scale).width(), 16000);
    EXPECT_LT(scale, 1);
    const ProgressHandler before = setProgressHandler([](const Progress&) { return false; });
    EXPECT_THROW(drawPng(desk.diagram()), Cancelled);
    setProgressHandler(before);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    answerFileDialog(desk.dir.path("large.png"));
    QTimer user; // chooses the offered SVG
    QObject::connect(&user, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        user.stop();
        answerFileDialog(desk.dir.path("large.svg"));
        QTest::mouseClick(box->defaultButton(), Qt::LeftButton);
    });
    user.start(5);
    desk.window<QAbstractButton>("save")->click();
    EXPECT_EQ(desk.status(), "Saved as " + desk.dir.path("large.svg") + ".");
    EXPECT_FALSE(std::filesystem::exists(desk.dir.path("large.png")));
}

} // namespace
