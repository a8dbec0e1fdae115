#include "Files/Registry.h"
#include "wizard/Desk.h"

#include <pwd.h>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace {

const std::string kProgram = R"(SOFTWARE\\ZANTH\\QEL)"; // as JSON writes it

CString loginName()
{
    return ::getpwuid(::geteuid())->pw_name;
}

// A fixture with a folder for settings; the file is in its config/typeforge.
class Settings : public testing::Test
{
protected:
    Settings() { qputenv("XDG_CONFIG_HOME", dir.path("config").c_str()); }

    std::string write(const std::string& json) { return dir.write("config/typeforge/settings.json", json); }
    std::string read() { return TempDir::read(dir.path("config/typeforge/settings.json")); }

    static QELOptions load()
    {
        QELOptions options;
        options.getValues();
        return options;
    }

    static std::vector<std::string> shown(CString (QELOptions::*fill)(CComboBox&), QELOptions& options)
    {
        CComboBox combo;
        const CString selected = (options.*fill)(combo);
        EXPECT_EQ(selected, combo.currentText().toStdString());
        std::vector<std::string> entries;
        for (int i = 0; i < combo.count(); ++i)
            entries.push_back(combo.itemText(i).toStdString());
        return entries;
    }

    TempDir dir;
};

using Texts = std::vector<std::string>;

// An invalid settings file counts as empty. A file that couldn't be read at all is kept.
TEST_F(Settings, AreDefaultsWhereTheFileIsBad)
{
    const std::string deep = "{\"a\":" + std::string(200000, '[') + std::string(200000, ']') + "}";
    const struct
    {
        std::string json;
        bool keptAside;
    } files[] = {{"{}", false},
                 {"", true},
                 {"{\"a\": {", true},
                 {"[1, 2]", true},
                 {"{\"\xff\": {}}", true},
                 {R"({"SOFTWARE\\ZANTH\\QEL": "x", "SOFTWARE\\ZANTH": 3})", false},
                 {R"({"SOFTWARE\\ZANTH\\QEL": {"HideWelcomePage": null, "Input folder": {}},
                     "SOFTWARE\\ZANTH": {"Port": 1e20}, "SOFTWARE\\ZANTH\\QEL\\InFiles": [1]})",
                  false},
                 {R"({"SOFTWARE\\ZANTH": {"Port": 18446744073709551615}})", false},
                 {deep, false},
                 {"{}" + std::string(4 << 20, ' '), true}};
    for (const auto& file : files) {
        SCOPED_TRACE(file.json.substr(0, 100));
        const std::string aside = write(file.json) + ".bad";
        QELOptions options = load();
        EXPECT_EQ(options.queryInputFolder(), std::filesystem::current_path());
        EXPECT_EQ(options.queryOutputFolder(), std::filesystem::current_path());
        EXPECT_EQ(options.queryBrokerPort(), 7250u);
        EXPECT_EQ(shown(&QELOptions::fillInputFile, options), Texts{});
        EXPECT_EQ(shown(&QELOptions::fillUser, options), Texts{loginName()});
        EXPECT_EQ(options.queryHideWelcome() + options.queryLastImporterSel() + options.queryUseTrustedLogon(), 0);
        EXPECT_EQ(std::filesystem::remove(aside), file.keptAside);
        options.setBrokerPort(7);
        options.flushValues();
        EXPECT_EQ(load().queryBrokerPort(), 7u);
    }
}

// Reading doesn't wait for a pipe in place of the file.
TEST_F(Settings, AreDefaultsWhereTheFileIsAPipe)
{
    const std::string file = write("");
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    load().flushValues();
    EXPECT_TRUE(std::filesystem::is_fifo(file + ".bad"));
    EXPECT_TRUE(std::filesystem::is_regular_file(file));
}

TEST_F(Settings, AreWrittenWholeAndComeBack)
{
    QELOptions options = load();
    options.setHideWelcome(1);
    options.setInputFolder("/in/größe");
    options.setOutputFolder("/out/\xff"); // not UTF-8
    options.addInputFile("a.dtd");
    options.addInputFile("b.dtd");
    options.addOutputFile("c.xml");
    options.addUser("SCOTT");
    options.addBrokerIP("broker");
    options.setBrokerPort(4294967295u);
    options.setLastImporterSel(-2);
    options.setFullReading(1);
    options.setPwd("secret");
    options.flushValues();
    EXPECT_EQ(read().find("secret"), std::string::npos);

    QELOptions again = load();
    EXPECT_EQ(again.queryHideWelcome(), 1);
    EXPECT_EQ(again.queryInputFolder(), "/in/größe");
    EXPECT_EQ(again.queryOutputFolder(), "/out/\xff");
    EXPECT_EQ(shown(&QELOptions::fillInputFile, again), (Texts{"b.dtd", "a.dtd"}));
    EXPECT_EQ(shown(&QELOptions::fillOutputFile, again), Texts{"c.xml"});
    EXPECT_EQ(shown(&QELOptions::fillUser, again), (Texts{loginName(), "SCOTT"}));
    EXPECT_EQ(shown(&QELOptions::fillBrokerIP, again), Texts{"broker"});
    EXPECT_EQ(again.queryBrokerPort(), 4294967295u);
    EXPECT_EQ(again.queryLastImporterSel(), -2);
    EXPECT_EQ(again.queryFullReading(), 1);
}

TEST_F(Settings, OfOthersStayAndTheVendorsServerLeadsTheList)
{
    write(R"({"other": {"x": "y"}, "SOFTWARE\\ZANTH": {"ServerAddress": "five"},
              "SOFTWARE\\ZANTH\\QEL\\Broker": {"a": "one", "b": "two", "five": "five", "z": "four"},
              "SOFTWARE\\ZANTH\\QEL": {"HideWelcomePage": "12 or so", "LastOutputMode": true}})");
    QELOptions options = load();
    EXPECT_EQ(shown(&QELOptions::fillBrokerIP, options), (Texts{"five", "one", "two", "four"}));
    EXPECT_EQ(options.queryHideWelcome(), 12);
    EXPECT_EQ(options.queryLastOutputSel(), 1);
    options.flushValues();
    EXPECT_NE(read().find("\"x\": \"y\""), std::string::npos);
}

TEST_F(Settings, ListEndsBeforeWhatIsTooLong)
{
    for (const auto& [name, length, kept] :
         {std::tuple{"123456789", 259u, 3u}, {"1234567890", 1u, 1u}, {"b", 260u, 1u}}) {
        write("{\"" + kProgram + R"(\\InFiles": {"a": "1", ")" + name + "\": \"" + std::string(length, 'x') +
              R"(", "c": "3"}})");
        QELOptions options = load();
        EXPECT_EQ(shown(&QELOptions::fillInputFile, options).size(), kept) << name;
    }
}

TEST_F(Settings, ListIsStoredUnderLetters)
{
    Registry reg;
    CStringList list(30, "x");
    FlushToReg(reg, list, "k");
    EXPECT_EQ(reg.queryValues(HKEY_CURRENT_USER, "k").size(), 26u);
}

// Guards against a scan of all keys for each one, which takes minutes.
TEST_F(Settings, AreReadAtOnceWhereThereAreMany)
{
    const struct
    {
        CString start;
        const char *value, *end;
    } kinds[] = {{"{\"" + kProgram + R"(\\InFiles": {"a": "x")", R"("7")", "}}"},
                 {R"({"a": 1)", R"("7")", "}"},
                 {R"({"a": 1)", R"({"a": []})", "}"}};
    for (const auto& [start, value, end] : kinds) {
        CString json = start;
        for (int i = 0; i < 100'000; ++i)
            json += ",\"" + std::to_string(i) + "\": " + value;
        write(json + end);
        QELOptions options = load();
        shown(&QELOptions::fillInputFile, options);
        options.addInputFile("b");
        options.flushValues();
        EXPECT_NE(read().find("99999"), std::string::npos); // foreign keys stay
        EXPECT_EQ(shown(&QELOptions::fillInputFile, options).front(), "b");
    }
}

TEST_F(Settings, AreReadByTheRulesOfTheRegistry)
{
    write(R"({"k": {"text": "four", "number": 258, "digits": "-7x", "words": "none", "": "default"}})");
    Registry reg;
    const struct
    {
        const char* name;
        unsigned size;
        bool found;
        const char* text;
    } texts[] = {{"text", 5, true, "four"},
                 {"text", 4, false, ""},          // no room for the terminator
                 {"number", 5, true, "\x02\x01"}, // as bytes
                 {"", 5, false, ""}};
    for (const auto& row : texts) {
        char buffer[5] = "....";
        EXPECT_EQ(reg.getString(HKEY_CURRENT_USER, "k", row.name, buffer, row.size), row.found) << row.name;
        EXPECT_STREQ(buffer, row.text) << row.name;
    }
    EXPECT_TRUE(reg.setInt(HKEY_CURRENT_USER, "k", "new", -1));
    const std::tuple<const char*, bool, int> numbers[] = {
        {"digits", true, -7}, {"words", true, 0}, {"no", false, 0}, {"new", true, -1}};
    for (const auto& [name, found, value] : numbers) {
        int number = 9;
        unsigned large = 9;
        EXPECT_EQ(reg.getInt(HKEY_CURRENT_USER, "k", name, number), found) << name;
        EXPECT_EQ(reg.getUInt(HKEY_CURRENT_USER, "k", name, large), found) << name;
        EXPECT_EQ(number, value) << name;
        EXPECT_EQ(large, static_cast<unsigned>(value)) << name;
    }
}

// If settings can't be written, the wizard works on and the existing file stays.
TEST_F(Settings, ThatCantBeStoredAreLeftAlone)
{
    dir.write("config/typeforge", "a file where the folder should be");
    load().flushValues();
    EXPECT_FALSE(Registry().setInt(HKEY_CURRENT_USER, "k", "n", 1));
    EXPECT_EQ(TempDir::read(dir.path("config/typeforge")), "a file where the folder should be");
}

TEST(RecentList, KeepsFifteenNewestFirstEachOnce)
{
    CStringList list;
    for (int i = 1; i <= 16; ++i)
        AddUnique(std::to_string(i), list, 1);
    AddUnique(list.back(), list, 1);
    EXPECT_EQ(list.size(), 15u);
    EXPECT_EQ(list.front() + " " + list.back(), "2 3");
    EXPECT_EQ(QueryTop(list), "2");
    AddUnique("Server1", list = {"server1"}, 0);
    EXPECT_EQ(list, (CStringList{"server1", "Server1"}));
}

// Starts a process that keeps storing settings, each time with one number in all of them.
pid_t startStoring()
{
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    QELOptions options;
    options.getValues();
    for (int i = options.queryLastImporterSel() + 1;; ++i) {
        options.setLastImporterSel(i);
        options.setLastOutputSel(i);
        options.setInputFolder("/" + std::string(static_cast<std::size_t>(i % 200), 'x'));
        options.flushValues();
    }
}

// Two wizards store at the same time and are killed while doing so.
TEST_F(Settings, AreOldOrNewWheneverTheProcessIsKilled)
{
    std::minstd_rand random(std::random_device{}());
    for (int round = 0; round < 50; ++round) {
        const pid_t wizards[] = {startStoring(), startStoring()};
        while (!std::filesystem::exists(dir.path("config/typeforge/settings.json")))
            ::usleep(1000); // on a busy machine the first file may take long
        ::usleep(500 + random() % 10000);
        for (const pid_t wizard : wizards) {
            ::kill(wizard, SIGKILL);
            ::waitpid(wizard, nullptr, 0);
        }
        const QELOptions options = load();
        ASSERT_EQ(options.queryLastImporterSel(), options.queryLastOutputSel());
        if (options.queryLastImporterSel() > 0) {
            ASSERT_EQ(options.queryInputFolder().size(), options.queryLastImporterSel() % 200 + 1u);
        }
    }
    EXPECT_GT(load().queryLastImporterSel(), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.path("config/typeforge/settings.json.bad")));
}

TEST(Results, StandOnOneLineEach)
{
    QELOptions options;
    options.addResult("a\nb skipped", ResultKind::skipped);
    CListBox box;
    options.fillResultList(box);
    EXPECT_EQ(box.item(0)->text(), "a b skipped");
}

} // namespace
