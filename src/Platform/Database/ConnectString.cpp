#include "Platform/Database/ConnectString.h"

#include "Platform/Database/DBException.h"
#include "Platform/Database/DataSources.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <odbcinst.h>
#include <vector>

namespace {

// MariaDB's driver takes the login timeout from the connection string alone; others pass over words they don't know.
constexpr std::string_view kTimeLimits = "CONN_TIMEOUT=15;";

// Where the value of a word stands in a connection string; empty where the word isn't there. The view is into the text.
std::string_view valueOf(std::string_view connection, std::string_view word)
{
    while (!connection.empty()) {
        const std::size_t equals = std::min(connection.find('='), connection.size());
        const std::string_view key = trimmed(connection.substr(0, equals));
        connection.remove_prefix(std::min(equals + 1, connection.size()));
        const bool braced = connection.starts_with('{');
        const std::size_t end = std::min(connection.find(';', braced ? connection.find('}') : 0), connection.size());
        if (isSameAscii(key, word))
            return connection.substr(0, end);
        connection.remove_prefix(std::min(end + 1, connection.size()));
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

// Where there is a choice, the source's own is the one that counts.
bool choosesTls(const CString& connection)
{
    if (!valueOf(connection, "SSLmode").empty())
        return true;
    const CString name(valueOf(connection, "DSN"));
    std::array<char, 32> mode = {};
    return !name.empty() &&
           SQLGetPrivateProfileString(name.c_str(), "SSLmode", "", mode.data(), int{mode.size()}, "odbc.ini") > 0;
}

CString tlsWord()
{
    const char* const mode = std::getenv("PGSSLMODE");
    const bool chosen =
        mode && std::string_view(mode).find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == CString::npos;
    return CString("SSLmode=") + (chosen && *mode ? mode : "prefer") + ";";
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
    if (found == sources.end())
        throw CDBException("IM002", 0, "There is no data source called " + name);
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
    if (!choosesTls(connection))
        words += tlsWord();
    if (onlyReading)
        words += "NoCreat=1;"; // SQLite's
    return words;
}

CString plainConnection(const CString& connection)
{
    const std::string_view value = trimmed(valueOf(connection, "DSN"));
    if (!value.starts_with('{') || !value.ends_with('}'))
        return connection;
    const CString name = dataSourceText(CString(value.substr(1, value.size() - 2)));
    const auto start = static_cast<std::size_t>(value.data() - connection.data());
    return connection.substr(0, start) + name.substr(4, name.size() - 5) + connection.substr(start + value.size());
}
