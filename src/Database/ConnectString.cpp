#include "Database/ConnectString.h"

#include "Database/DBException.h"
#include "Database/DataSources.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <odbcinst.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace {

// MariaDB's driver takes the login timeout from the connection string alone; others pass over words they don't know.
constexpr std::string_view kTimeLimits = "CONN_TIMEOUT=15;";

// SQLite's, in milliseconds. While another program has the database locked, opening it takes three times as long.
constexpr std::string_view kLockTimeout = "Timeout=3400;";

// The modes of libpq. A word that is none of them is no TLS at all to PostgreSQL's driver.
constexpr std::string_view kTlsModes[] = {"disable", "allow", "prefer", "require", "verify-ca", "verify-full"};

// Where a value that may stand in braces, in which a brace of its own is doubled, can end at the earliest.
std::size_t endOfBraces(std::string_view text)
{
    std::size_t at = text.starts_with('{') ? text.find('}') : 0;
    while (at != text.npos && at > 0 && text.substr(at + 1).starts_with('}'))
        at = text.find('}', at + 2);
    return at;
}

// A word of a connection string as it stands there, with what it says and the semicolon, and its value alone.
struct Word
{
    std::string_view whole, value;
};

// The first word of that name; an empty one where there is none.
Word wordOf(std::string_view connection, std::string_view name)
{
    while (!connection.empty()) {
        const std::size_t start = std::min(connection.find('='), connection.size() - 1) + 1;
        const std::string_view rest = connection.substr(start);
        const std::size_t length = std::min(rest.find(';', endOfBraces(rest)), rest.size());
        const std::string_view whole = connection.substr(0, start + length + 1);
        if (isSameAscii(trimmed(connection.substr(0, start - 1)), name))
            return {whole, rest.substr(0, length)};
        connection.remove_prefix(whole.size());
    }
    return {};
}

// Braces keep what a driver would decode or end the value at; a brace within is doubled.
void appendBraced(CString& out, const CString& value)
{
    out += '{';
    for (const char c : value)
        out.append(c == '}' ? 2 : 1, c);
    out += '}';
}

bool isPlain(const CString& value)
{
    return std::ranges::all_of(value, [](unsigned char c) { return c < 128 && std::isalnum(c); });
}

CString withoutBraces(std::string_view value)
{
    value = trimmed(value);
    if (!value.starts_with('{') || endOfBraces(value) + 1 != value.size())
        return CString(value);
    CString text(value.substr(1, value.size() - 2));
    for (std::size_t at = 0; (at = text.find("}}", at)) != text.npos; ++at)
        text.erase(at, 1);
    return text;
}

CString profileText(const CString& section, const char* entry, const char* file)
{
    std::array<char, 1024> value = {};
    SQLGetPrivateProfileString(section.c_str(), entry, "", value.data(), int{value.size()}, file);
    return value.data();
}

// What a source says of itself, in the connection string or in the data source that it names; "" for nothing.
CString settingOf(const CString& connection, const char* word)
{
    const CString own = withoutBraces(wordOf(connection, word).value);
    const CString name = withoutBraces(wordOf(connection, "DSN").value);
    return !own.empty() || name.empty() ? own : profileText(name, word, "odbc.ini");
}

// A source's driver is named, or its library is; `part` is one of its name or its library's.
bool hasDriver(const CString& connection, std::initializer_list<const char*> parts)
{
    const CString name = settingOf(connection, "Driver");
    const CString both = lowerAscii(name + "\n" + profileText(name, "Driver", "odbcinst.ini"));
    return std::ranges::any_of(parts, [&both](const char* part) { return both.find(part) != both.npos; });
}

// The strictest is for drivers that may know the word and aren't known here.
CString tlsMode(const CString& connection)
{
    const char* const mode = std::getenv("PGSSLMODE");
    if (!mode)
        return "prefer";
    if (std::ranges::find(kTlsModes, mode) != std::end(kTlsModes))
        return mode;
    if (!hasDriver(connection, {"postgres", "psqlodbc"}))
        return "verify-full";
    CString modes;
    for (const std::string_view each : kTlsModes)
        modes.append(modes.empty() ? "" : ", ").append(each);
    throw CDBException("S1009", 0, CString("The variable PGSSLMODE is \"") + mode + "\", and none of " + modes);
}

// The user's file of data sources where the driver manager passes over it, since it can't append to it; else "". The
// driver is found in it all the same, and would take defaults of its own for the rest.
CString passedOverFile()
{
    const char* const variable = std::getenv("ODBCINI");
    const passwd* const user = ::getpwuid(::getuid());
    const CString file = variable && *variable ? variable : CString(user ? user->pw_dir : "/home") + "/.odbc.ini";
    return ::access(file.c_str(), W_OK) != 0 && errno != ENOENT ? file : "";
}

bool isInUsersFile(const CString& dataSource)
{
    SQLSetConfigMode(ODBC_USER_DSN);
    const bool is = !profileText(dataSource, "Driver", "odbc.ini").empty();
    SQLSetConfigMode(ODBC_BOTH_DSN);
    return is;
}

} // namespace

CString logonText(const CString& user, const CString& password)
{
    CString text;
    text.reserve(2 * (user.size() + password.size()) + sizeof "UID={};PWD={};"); // no growth: it would leave copies
    text += "UID=";
    if (user.starts_with('{') || user.find(';') != CString::npos)
        appendBraced(text, user);
    else
        text += user; // PostgreSQL's driver takes braces for a part of it
    text += ";PWD=";
    if (isPlain(password))
        text += password;
    else
        appendBraced(text, password); // PostgreSQL's driver decodes %41 and + outside of them
    text += ';';
    return text;
}

// The driver manager and the drivers each read the name in a way of their own where it is not as simple as this, and
// open the first source whose name differs in letter case alone.
CString dataSourceText(const CString& name)
{
    std::vector<DataSource> sources;
    listDataSources(sources);
    const auto found =
        std::ranges::find_if(sources, [&](const DataSource& source) { return isSameAscii(source.name, name); });
    const CString unread = passedOverFile();
    if (found == sources.end() || (!unread.empty() && isInUsersFile(name)))
        throw CDBException("IM002", 0,
                           "There is no data source called " + name +
                               (unread.empty() ? "" : "; " + unread + " isn't read, since it can't be written to"));
    const bool another = found->name != name && std::ranges::find(sources, name, &DataSource::name) != sources.end();
    if (another)
        throw CDBException("IM002", 0, "The data source " + found->name + " hides the one called " + name);
    if (name.starts_with('{') || name.find(';') != CString::npos)
        throw CDBException("IM002", 0, "The name of a data source can't start with { or hold a semicolon: " + name);
    return "DSN=" + name + ";";
}

CString connectionWords(const CString& connection, bool onlyReading)
{
    CString words(kTimeLimits);
    if (settingOf(connection, "SSLmode").empty()) // where there is a choice, the source's own is the one that counts
        words += "SSLmode=" + tlsMode(connection) + ";";
    if (onlyReading)
        words += "NoCreat=1;"; // SQLite's
    if (onlyReading && hasDriver(connection, {"sqlite"}) && settingOf(connection, "Timeout").empty())
        words += kLockTimeout;
    return words;
}

// In front no driver overlooks it, however it reads the braces of other values.
CString plainConnection(const CString& connection)
{
    CString source, rest = connection;
    for (Word word; !(word = wordOf(rest, "DSN")).whole.empty();) {
        if (source.empty() && !trimmed(word.value).empty())
            source = dataSourceText(withoutBraces(word.value));
        rest.erase(static_cast<std::size_t>(word.whole.data() - rest.data()), word.whole.size());
    }
    return source + rest;
}
