#include "TestFolders.h"
#include "Wizard/Run/SourceList.h"
#include "wizard/Desk.h"

#include <QCheckBox>
#include <gmock/gmock.h>

#include <algorithm>
#include <tuple>

namespace {

struct Listed
{
    const char* text;
    Texts names;
} const kListed[] = {
    {"a b.xsd", {"a b.xsd"}},      {R"("a b.xsd" "c")", {"a b.xsd", "c"}},
    {R"("a"   "b" )", {"a", "b"}}, {R"("say ""x""" "b")", {R"(say "x")", "b"}},
    {R"("a")", {R"("a")"}}, // a valid file name
    {R"("a" b)", {R"("a" b)"}},    {R"("a" "b)", {R"("a" "b)"}},
    {R"("" "b")", {R"("" "b")"}},  {"", {""}},
};

TEST(SourceList, NamesOneFileUnlessSeveralAreQuoted)
{
    for (const Listed& row : kListed)
        EXPECT_EQ(sourcesIn(row.text), row.names) << row.text;
    for (const Texts& names : {Texts{"a"}, {"a b", "c\"d", "\""}})
        EXPECT_EQ(sourcesIn(textOfSources(names)), names);
}

std::string schema(const std::string& name)
{
    return "<schema xmlns='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:x:" + name + "'><element name='" +
           name + "'><complexType><sequence><element name='v' type='string'/></sequence></complexType></element>" +
           "</schema>";
}

std::string avro(const std::string& name, const std::string& space)
{
    return R"({"type": "record", "name": ")" + name + R"(", "namespace": ")" + space + R"(", "fields": []})";
}

Texts typesShown(Desk& desk)
{
    Texts names;
    auto& list = desk.control<ListView>(IDC_TYPES);
    for (int i = 0; i < list.rowCount(); ++i)
        names.push_back(list.cell(i, 0));
    std::ranges::sort(names);
    return names;
}

struct Set
{
    std::vector<const char*> opened; // below "in"
    int layout;
    const char* text; // in the field, with IN for that folder; null if the import can't begin
    Texts types;
    const char* box = "";
} const kSets[] = {
    {{"a.xsd", "b.xsd"}, 0, R"("IN/a.xsd" "IN/b.xsd")", {"a\\a", "b\\b"}},
    {{"a.xsd", "b.xsd"}, 1, R"("IN/a.xsd" "IN/b.xsd")", {"a", "b"}},
    {{"set"}, 0, "IN/set", {"c\\c", "d\\d"}},
    {{"a.xsd", "set"}, 0, R"("IN/a.xsd" "IN/set")", {"a\\a", "c\\c", "d\\d"}},
    {{"a.xsd"}, 2, "IN/a.xsd", {"a\\a"}},
    {{"a.xsd"}, 0, "IN/a.xsd", {"a"}},
    {{"a.xsd", "o.dtd", "b.xsd"},
     0,
     R"("IN/a.xsd" "IN/b.xsd")",
     {"a\\a", "b\\b"},
     "Files of one kind are imported together. Ignored:\nIN/o.dtd"},
    {{"m.xml", "n.xml"}, 0, R"("IN/m.xml" "IN/n.xml")", {"m"}},
    {{"p.avsc", "avro"}, 0, R"("IN/p.avsc" "IN/avro")", {"n.p\\P", "n.q\\Q"}},
    {{"p.avsc", "avro"}, 1, R"("IN/p.avsc" "IN/avro")", {"P", "Q"}},
    {{"j.json", "set"}, 0, "IN/j.json", {"j"}, "Files of one kind are imported together. Ignored:\nIN/set"},
    {{"none"}, 0, nullptr, {}, "Select source message"},
};

TEST(SourceSet, IsReadAsOneAndRemembered)
{
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
    for (const Set& row : kSets) {
        SCOPED_TRACE(testing::PrintToString(row.opened));
        Desk desk;
        const std::string in = desk.dir.path("in");
        for (const char* name : {"a", "b", "set/c", "set/d"})
            desk.dir.write("in/" + std::string(name) + ".xsd", schema(name[0] == 's' ? name + 4 : name));
        desk.dir.write("in/o.dtd", "<!ELEMENT o ANY>");
        desk.dir.write("in/m.xml", "<m><x/></m>");
        desk.dir.write("in/n.xml", "<m><y/></m>");
        desk.dir.write("in/j.json", "{\"x\": 1}");
        desk.dir.write("in/p.avsc", avro("P", "n.p"));
        desk.dir.write("in/avro/q.avsc", avro("Q", "n.q"));
        std::filesystem::create_directories(in + "/none");
        desk.wizard().options.setLayout(static_cast<FullMessage::Layout>(row.layout));
        desk.wizard().options.setFullReading(row.opened.size() == 1 && row.text); // several sources check it
        QStringList files;
        for (const char* name : row.opened)
            files.append(QString::fromStdString(in + "/" + name));
        desk.wizard().openFiles(files);
        const auto named = [&](const char* text) {
            return QString(text).replace("IN", QString::fromStdString(in)).toStdString();
        };
        EXPECT_EQ(desk.boxes.take(), *row.box ? Texts{named(row.box)} : Texts{});
        if (!row.text)
            continue;
        EXPECT_EQ(desk.text(IDC_INPUT_FILE), named(row.text));
        desk.click("next");
        ASSERT_EQ(desk.page(), IDD_EDIT) << testing::PrintToString(desk.boxes.take()) << desk.boxes.details;
        EXPECT_EQ(typesShown(desk), row.types);
        while (desk.page() != IDD_FINISH) {
            if (desk.page() == IDD_OUTPUT_FILE)
                desk.type(IDC_OUTPUT_FILE, desk.output);
            desk.click("next");
        }
        const CString written = TempDir::read(desk.output);
        std::filesystem::remove(desk.output);
        const QString command = desk.wizard().activePage()->findChild<QLineEdit*>("command")->text();
        EXPECT_EQ(std::system(("cd / && " TEST_BUILD_DIR "/" + command.toStdString() + " -q").c_str()), 0);
        EXPECT_EQ(TempDir::read(desk.output), written);
        desk.click("finish");
        desk.end();
        desk.walkTo(IDD_SOURCE_TYPE);
        desk.click("next");
        EXPECT_EQ(desk.text(IDC_INPUT_FILE), named(row.text));
        EXPECT_EQ(desk.control<QComboBox>(IDC_INPUT_FILE).count(), 1);
        const bool isSet = row.text[0] == '"' || row.opened[0] == std::string("set");
        EXPECT_EQ(TempDir::read(desk.settingsFile()).find("InFiles") == CString::npos, isSet);
    }
    qunsetenv("SOURCE_DATE_EPOCH");
}

TEST(SourceSet, CanBeAFolderWhereTheReadingTakesOne)
{
    const std::tuple<const char*, bool, bool, bool> rows[] = {{"DTD importer", true, true, true},
                                                              {"DTD importer", false, false, false},
                                                              {"WSDL importer", false, true, true},
                                                              {"JSON Schema importer", false, true, false},
                                                              {"XML data importer", true, false, false}};
    qputenv("XML_CATALOG_FILES", "/none http://none");
    for (const auto& [importer, isFull, isOffered, hasCatalogs] : rows) {
        Desk desk;
        desk.importer = importer;
        desk.wizard().options.setFullReading(isFull);
        desk.walkTo(IDD_SOURCE);
        EXPECT_EQ(desk.control<QWidget>(IDC_CHOOSE_FOLDER).isVisible(), isOffered) << importer;
        EXPECT_EQ(desk.control<QWidget>(IDC_CATALOGS).isVisible(), hasCatalogs) << importer;
        EXPECT_EQ(desk.control<QWidget>(IDC_CATALOG_STATE).isVisible(), hasCatalogs) << importer;
        EXPECT_EQ(desk.text(IDC_CATALOG_STATE), "XML_CATALOG_FILES: /none: No such file or directory, and 1 other");
    }
    qunsetenv("XML_CATALOG_FILES");
}

TEST(SourceSet, HasAMainElementInEachNamespace)
{
    Desk desk;
    const CString a = desk.dir.write("in/a.xsd", schema("a")), b = desk.dir.write("in/b.xsd", schema("b"));
    const CString other =
        desk.dir.write("in/c.xsd", QString::fromStdString(schema("a")).replace("urn:x:a", "urn:x:c").toStdString());
    desk.source = textOfSources({a, b, other});
    desk.importer = "XML Schema importer";
    desk.wizard().options.setFullReading(1);
    desk.walkTo(IDD_EDIT);
    auto& main = desk.control<QComboBox>(IDC_MAIN_ELEMENT);
    Texts names;
    for (int i = 0; i < main.count(); ++i)
        names.push_back(main.itemText(i).toStdString());
    EXPECT_EQ(names, (Texts{"{urn:x:a}a", "b", "{urn:x:c}a"}));
    main.setCurrentIndex(2);
    Q_EMIT main.activated(2);
    EXPECT_EQ(typesShown(desk), (Texts{"c\\a"}));
    EXPECT_EQ(main.currentText(), "{urn:x:c}a");
}

TEST(SourceSet, IsFoundByCatalogues)
{
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
    Desk desk;
    const CString entry =
        "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog'><public publicId='m' uri='m.mod'/>";
    const CString catalog = desk.dir.write("in/catalog.xml", entry + "</catalog>");
    desk.dir.write("in/m.mod", "<!ELEMENT b (c)><!ELEMENT c (#PCDATA)>");
    desk.source = desk.dir.write("in/a.dtd", "<!ENTITY % m PUBLIC 'm' 'none'>%m;<!ELEMENT a (b)>");
    desk.wizard().options.setFullReading(1);
    desk.walkTo(IDD_SOURCE);
    EXPECT_FALSE(desk.control<QWidget>(IDC_CATALOG_STATE).isVisible());
    auto& field = desk.control<QLineEdit>(IDC_CATALOGS);
    field.setText("none.xml");
    desk.type(IDC_INPUT_FILE, desk.source);
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(), Texts{"Select source message"});
    EXPECT_EQ(desk.boxes.details, "XML catalogue " + desk.dir.path("start/none.xml") + ": No such file or directory");
    EXPECT_EQ(desk.wizard().focusWidget(), &field);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    answerFileDialog(catalog);
    desk.press(IDC_CHOOSE_CATALOGS);
    EXPECT_EQ(field.text().toStdString(), catalog);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return desk.text(IDC_COUNTS).ends_with("In full: 2 types, no losses."); }, 20'000))
        << desk.text(IDC_COUNTS);
    desk.walkTo(IDD_EDIT);
    EXPECT_EQ(typesShown(desk), (Texts{"a", "b"}));
    desk.walkTo(IDD_FINISH);
    const CString written = TempDir::read(desk.output);
    const QString command = desk.wizard().activePage()->findChild<QLineEdit*>("command")->text();
    EXPECT_EQ(std::system(("cd / && " TEST_BUILD_DIR "/" + command.toStdString() + " -q --always").c_str()), 0);
    EXPECT_EQ(TempDir::read(desk.output), written);
    for (const CString& remembered : {catalog, CString()}) {
        desk.walkTo(IDD_FINISH);
        desk.click("finish");
        desk.end();
        desk.walkTo(IDD_SOURCE);
        EXPECT_EQ(desk.text(IDC_CATALOGS), remembered);
        desk.control<QLineEdit>(IDC_CATALOGS).clear();
    }
    qunsetenv("SOURCE_DATE_EPOCH");
}

TEST(SourceSet, IsRefusedByAReadingOfOneFile)
{
    Desk desk;
    desk.importer = "XML Schema importer";
    const CString a = desk.dir.write("in/a.xsd", schema("a")), b = desk.dir.write("in/b.xsd", schema("b"));
    desk.walkTo(IDD_SOURCE);
    for (const auto& [text, details] :
         {std::pair{textOfSources({a, b}), "Several files can be read together only in full.*"},
          {textOfSources({a, "/none"}), "/none: No such file or directory"},
          {desk.dir.path("in"), "A folder can be read only in full. Check \"Read in full\", .*"}}) {
        desk.type(IDC_INPUT_FILE, text);
        desk.click("next");
        EXPECT_EQ(desk.boxes.take(), Texts{"Select source message"});
        EXPECT_THAT(desk.boxes.details, testing::MatchesRegex(details));
        EXPECT_EQ(desk.page(), IDD_SOURCE);
    }
    const auto* frame = desk.wizard().activePage()->findChild<QWidget*>("redFrame");
    EXPECT_TRUE(frame->isVisible());
    desk.control<QCheckBox>(IDC_FULL_READING).setChecked(true);
    EXPECT_FALSE(frame->isVisible());
    std::filesystem::create_directories(desk.dir.path("empty"));
    desk.type(IDC_INPUT_FILE, desk.dir.path("empty"));
    desk.click("next");
    EXPECT_EQ(desk.boxes.take(), Texts{desk.dir.path("empty") + ": the folder holds no source for xsd"});
    EXPECT_EQ(desk.page(), IDD_SOURCE);
    desk.click("back");
    desk.importer = "BTD importer";
    desk.walkTo(IDD_SOURCE);
    desk.type(IDC_INPUT_FILE, textOfSources({a, b}));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return desk.text(IDC_COUNTS) == "no types, this importer reads one file at a time."; }, 20'000))
        << desk.text(IDC_COUNTS);
}

} // namespace
