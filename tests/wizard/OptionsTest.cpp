#include "Utils/registry.h"
#include "wizard/Desk.h"

#include <pwd.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const std::string kProgram = R"(SOFTWARE\\ZANTH\\QEL)"; // as JSON writes it

CString loginName()
{
    return ::getpwuid(::geteuid())->pw_name;
}

// A folder for settings; the file is written below its config/typeforge.
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

// A settings file that is no good counts as empty, and stays at hand where it couldn't be read at all.
struct BadFile
{
    const char* name;
    const char* json;
    bool keptAside;
};

void PrintTo(const BadFile& file, std::ostream* out)
{
    *out << file.name;
}

class BadSettings : public Settings, public testing::WithParamInterface<BadFile>
{};

TEST_P(BadSettings, GiveDefaultsAndAreReplaced)
{
    write(GetParam().json);
    QELOptions options = load();
    EXPECT_EQ(options.queryHideWelcome(), 0);
    EXPECT_EQ(options.queryInputFolder(), std::filesystem::current_path());
    EXPECT_EQ(options.queryBrokerPort(), 7250u);
    EXPECT_EQ(std::filesystem::exists(dir.path("config/typeforge/settings.json.bad")), GetParam().keptAside);
    options.setBrokerPort(7);
    options.flushValues();
    EXPECT_EQ(load().queryBrokerPort(), 7u);
}

const std::string kDeep = "{\"a\":" + std::string(200000, '[') + std::string(200000, ']') + "}";

INSTANTIATE_TEST_SUITE_P(
    Files, BadSettings,
    testing::Values(BadFile{"Missing", "{}", false}, BadFile{"Empty", "", true}, BadFile{"CutOff", "{\"a\": {", true},
                    BadFile{"NoObject", "[1, 2]", true}, BadFile{"NotUtf8", "{\"\xff\": {}}", true},
                    BadFile{"KeyIsAText", R"({"SOFTWARE\\ZANTH\\QEL": "x", "SOFTWARE\\ZANTH": 3})", false},
                    BadFile{"ValuesOfOtherTypes",
                            R"({"SOFTWARE\\ZANTH\\QEL": {"HideWelcomePage": null, "Input folder": {}},
                                "SOFTWARE\\ZANTH": {"Port": 1e20}, "SOFTWARE\\ZANTH\\QEL\\InFiles": [1]})",
                            false},
                    BadFile{"NestedDeeply", kDeep.c_str(), false}),
    [](const auto& row) { return row.param.name; });

TEST_F(Settings, StartWithDefaults)
{
    QELOptions options = load();
    EXPECT_EQ(options.queryOutputFolder(), options.queryCWD());
    EXPECT_EQ(shown(&QELOptions::fillInputFile, options), Texts{});
    EXPECT_EQ(shown(&QELOptions::fillUser, options), Texts{loginName()});
    EXPECT_EQ(shown(&QELOptions::fillBrokerIP, options), Texts{});
    EXPECT_EQ(options.queryInputFile(), "");
    EXPECT_EQ(options.queryLastImporterSel() + options.queryLastOutputSel() + options.queryUseTrustedLogon(), 0);
}

TEST_F(Settings, AreWrittenWholeAndComeBack)
{
    QELOptions options = load();
    options.setHideWelcome(1);
    options.setInputFolder("/in/größe");
    options.setOutputFolder("/out/\xff"); // no UTF-8
    options.addInputFile("a.dtd");
    options.addInputFile("b.dtd");
    options.addOutputFile("c.xml");
    options.addUser("SCOTT");
    options.addBrokerIP("broker");
    options.setBrokerPort(4294967295u);
    options.setLastImporterSel(-2);
    options.setPwd("secret");
    options.flushValues();
    EXPECT_EQ(read().find("secret"), std::string::npos);

    QELOptions again = load();
    EXPECT_EQ(again.queryHideWelcome(), 1);
    EXPECT_EQ(again.queryInputFolder(), "/in/größe");
    EXPECT_EQ(again.queryOutputFolder(), "/out/\uFFFD");
    EXPECT_EQ(shown(&QELOptions::fillInputFile, again), (Texts{"b.dtd", "a.dtd"}));
    EXPECT_EQ(shown(&QELOptions::fillOutputFile, again), Texts{"c.xml"});
    EXPECT_EQ(shown(&QELOptions::fillUser, again), (Texts{loginName(), "SCOTT"}));
    EXPECT_EQ(shown(&QELOptions::fillBrokerIP, again), Texts{"broker"});
    EXPECT_EQ(again.queryBrokerPort(), 4294967295u);
    EXPECT_EQ(again.queryLastImporterSel(), -2);
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
    const auto list = [](const std::string& name, std::size_t length) {
        return "{\"" + kProgram + R"(\\InFiles": {"a": "1", ")" + name + "\": \"" + std::string(length, 'x') +
               R"(", "c": "3"}})";
    };
    write(list("123456789", 259));
    QELOptions options = load();
    EXPECT_EQ(shown(&QELOptions::fillInputFile, options).size(), 3u);
    for (const std::string& tooLong : {list("1234567890", 1), list("b", 260)}) {
        write(tooLong);
        QELOptions cut = load();
        EXPECT_EQ(shown(&QELOptions::fillInputFile, cut), Texts{"1"});
    }
}

TEST_F(Settings, AreReadByTheRulesOfTheRegistry)
{
    write(R"({"k": {"text": "four", "number": 258, "digits": "-7x", "words": "none", "": "default"}})");
    Registry reg;
    char buffer[5] = "....";
    EXPECT_TRUE(reg.getString(HKEY_CURRENT_USER, "k", "text", buffer, 5));
    EXPECT_STREQ(buffer, "four");
    EXPECT_FALSE(reg.getString(HKEY_CURRENT_USER, "k", "text", buffer, 4)); // the end doesn't fit
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(reg.getString(HKEY_CURRENT_USER, "k", "number", buffer, 5)); // as bytes
    EXPECT_STREQ(buffer, "\x02\x01");
    EXPECT_FALSE(reg.getString(HKEY_CURRENT_USER, "k", "", buffer, 5));
    int number = 9;
    unsigned int large = 9;
    EXPECT_TRUE(reg.getInt(HKEY_CURRENT_USER, "k", "digits", number));
    EXPECT_EQ(number, -7);
    EXPECT_TRUE(reg.getUInt(HKEY_CURRENT_USER, "k", "digits", large));
    EXPECT_EQ(large, 4294967289u);
    EXPECT_TRUE(reg.getInt(HKEY_CURRENT_USER, "k", "words", number));
    EXPECT_EQ(number, 0);
    number = 9;
    EXPECT_FALSE(reg.getInt(HKEY_CURRENT_USER, "no", "number", number));
    EXPECT_EQ(number, 0);
    EXPECT_TRUE(reg.setInt(HKEY_CURRENT_USER, "k", "new", -1));
    EXPECT_TRUE(reg.getInt(HKEY_CURRENT_USER, "k", "new", number));
    EXPECT_EQ(number, -1);
}

// A place that can't be written leaves the wizard unharmed and what was there before in place.
TEST_F(Settings, ThatCantBeStoredAreLeftAlone)
{
    dir.write("config/typeforge", "a file where the folder should be");
    QELOptions options = load();
    options.flushValues();
    Registry reg;
    EXPECT_FALSE(reg.setInt(HKEY_CURRENT_USER, "k", "n", 1));
    EXPECT_EQ(TempDir::read(dir.path("config/typeforge")), "a file where the folder should be");
}

TEST(RecentList, KeepsFifteenNewestFirstEachOnce)
{
    CStringList list;
    for (int i = 1; i <= 16; ++i)
        AddUnique(std::to_string(i), list, 1);
    EXPECT_EQ(list.size(), 15u);
    EXPECT_EQ(list.front(), "16");
    EXPECT_EQ(list.back(), "2");
    AddUnique(list.back(), list, 1);
    EXPECT_EQ(list.size(), 15u);
    EXPECT_EQ(QueryTop(list), "2");
    CStringList names = {"server1"};
    AddUnique("Server1", names, 0);
    EXPECT_EQ(names, (CStringList{"server1", "Server1"}));
}

// Starts a process that stores settings again and again, each time all of them with one number.
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

// Two wizards store at once and are killed in the middle of it.
TEST_F(Settings, AreOldOrNewWheneverTheProcessIsKilled)
{
    std::minstd_rand random(std::random_device{}());
    for (int round = 0; round < 50; ++round) {
        const pid_t wizards[] = {startStoring(), startStoring()};
        while (!std::filesystem::exists(dir.path("config/typeforge/settings.json")))
            ::usleep(1000); // on a busy machine it may be long until the first are there
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

} // namespace
