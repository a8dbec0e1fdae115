// Each page with a screen reader, and with the keyboard alone.
#include "Database/Odbc.h"
#include "Ui/Mnemonics.h"
#include "wizard/Desk.h"

#include <QAccessible>
#include <QMetaEnum>

#include <map>

namespace {

// By page: role and name of each control in Tab order. An editable combo box includes its field.
const std::map<int, CString> kPages = {
    {IDD_FIRST, "CheckBox Hide this screen the next time"},
    {IDD_SOURCE_TYPE, "Tree Importers; EditableText Path for objects"},
    {IDD_SOURCE, "ComboBox File:; EditableText File:; Button Browse; CheckBox Read in full (namespaces, entities, "
                 "derived types); ComboBox Folders of types:; Button Read a folder ...; EditableText XML catalogues:; "
                 "Button Choose ..."},
    {IDD_EDIT, "Tree Generated types; EditableText Filter for types; CheckBox Structure; Button Picture ...; Button "
               "View ...; ComboBox Main element:; Button Details"},
    {IDD_OUTPUT, "RadioButton Output to file in local or network folder"},
    {IDD_OUTPUT_FILE, "ComboBox File:; EditableText File:; Button Browse"},
    {IDD_FINISH, "Button Open folder; Button View file; EditableText In a script:; Button Copy"},
    {IDD_LOGIN, "ComboBox Name; EditableText Name; EditableText Port; RadioButton Use Broker logon; ComboBox Broker "
                "username; EditableText Broker username; EditableText Broker password"},
    {IDD_CREATE_RESULT, "List Result of type creation; CheckBox Failures only; Button Copy; Button Save ..."},
    {IDD_DATA_SOURCE, "Tree Available data sources"},
    {IDD_DATABASE_TABLE, "Tree Available tables; EditableText Filter for tables; CheckBox Show only these"},
};

CString spoken(const QWidget& page)
{
    CString text;
    for (QWidget* control = page.nextInFocusChain(); control != &page; control = control->nextInFocusChain()) {
        if (!page.isAncestorOf(control) || !control->isVisible() || !(control->focusPolicy() & Qt::TabFocus))
            continue;
        const QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(control);
        text += CString(text.empty() ? "" : "; ") +
                QMetaEnum::fromType<QAccessible::Role>().valueToKey(interface->role()) + " " +
                interface->text(QAccessible::Name).toStdString();
    }
    return text;
}

// Checks the current page.
void look(Desk& desk)
{
    const QWidget& page = *desk.wizard().activePage();
    EXPECT_EQ(spoken(page), kPages.at(desk.page())) << desk.page();
    const QString taken = mnemonicsOf(&page);
    QString letters;
    for (const char* name : {"back", "next", "finish", "cancel", "help"})
        if (const auto* button = desk.wizard().findChild<QAbstractButton*>(name); button->isVisible())
            letters += button->text()[button->text().indexOf('&') + 1].toLower();
    for (const QChar& letter : letters)
        EXPECT_EQ((taken + letters).count(letter), 1) << desk.page() << ": " << letters.toStdString();
    EXPECT_TRUE(letters.contains('k') && letters.contains('c')) << desk.page(); // the letters of Back and Cancel
}

TEST(Spoken, EveryControlHasItsNameAndItsLetter)
{
    Desk desk;
    qputenv("XDG_DATA_HOME", desk.dir.path("data").c_str());
    const CString shop = desk.dir.path("shop.db");
    CDatabase().Open("Driver=SQLite3;Database=" + shop + ";", CDatabase::readWrite);
    setenv("ODBCINI", desk.dir.write("odbc.ini", "[Shop]\nDriver=SQLite3\nDatabase=" + shop + "\n").c_str(), 1);
    desk.source = desk.dir.write("in/a.dtd", "<!ELEMENT a (c, d)><!ELEMENT b (c)><!ELEMENT c (e)><!ELEMENT d ANY>");
    desk.wizard().options.setFullReading(1);
    for (const int page : {IDD_FIRST, IDD_SOURCE_TYPE, IDD_SOURCE, IDD_EDIT, IDD_OUTPUT, IDD_OUTPUT_FILE, IDD_FINISH}) {
        desk.walkTo(page);
        look(desk);
    }
    desk.wizard().options.setLastOutputSel(1);
    desk.click("back");
    desk.walkTo(IDD_LOGIN);
    look(desk);
    desk.type(IDC_SERVER, "local");
    desk.press(IDC_LOGON_TRUSTED);
    desk.click("next");
    look(desk);
    desk.click("next");
    desk.click("back");
    desk.importer = "ODBC importer";
    desk.walkTo(IDD_DATA_SOURCE);
    look(desk);
    desk.control<ListView>(IDC_DATA_SOURCES).selectRow(0);
    desk.click("next");
    look(desk);
}

} // namespace
