#include "Database/ConnectString.h"

#include "Database/ConnectSettings.h"
#include "Database/DBException.h"
#include "Database/DataSources.h"

#include <sqlext.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <odbcinst.h>
#include <pwd.h>
#include <unistd.h>
#include <utility>

// Nearly the same string for all drivers, because settings only hint at the driver behind a data source (hasDriver).
// Drivers ignore attributes that they don't know. If they read a value differently, the string has the form that
// PostgreSQL's, MariaDB's and SQLite's drivers read alike (docs/adr/connection-string.md).
namespace {

// SQLite's lock timeout in milliseconds. Opening a database that another program has locked takes three times as long,
// which is still within the usual time for a logon (CDatabase::loginTimeout).
constexpr std::string_view kLockTimeout = "Timeout=3400;";

// Appends a value in braces, inside which drivers neither decode anything nor see the end of the value. A brace within
// is doubled.
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

// Returns the user's odbc.ini if the driver manager ignores it because it can't append to it, else empty. The driver's
// library is still found there, but the driver would use defaults for all other entries. unixODBC looks in the
// account's home folder, whatever HOME is.
CString unreadableUserFile()
{
    const char* const variable = std::getenv("ODBCINI");
    const passwd* const user = ::getpwuid(::getuid());
    const CString file = variable && *variable ? variable : CString(user ? user->pw_dir : "/home") + "/.odbc.ini";
    return ::access(file.c_str(), W_OK) != 0 && errno != ENOENT ? file : "";
}

// The mode is global to the library. All other calls need both files.
bool isInUserFile(const CString& dataSource)
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
    text.reserve(2 * (user.size() + password.size()) + sizeof "UID={};PWD={};"); // growing would leave copies
    text += "UID=";
    if (user.starts_with('{') || user.find(';') != CString::npos)
        appendBraced(text, user);
    else
        text += user; // PostgreSQL's driver would take braces for a part of it
    text += ";PWD=";
    if (isPlain(password))
        text += password;
    else
        appendBraced(text, password); // PostgreSQL's driver decodes %41 and + without them
    text += ';';
    return text;
}

// Rejects a name that the driver manager and the drivers would not read alike. They open the first source whose name
// matches in any letter case.
CString dataSourceText(const CString& name)
{
    if (name.size() > SQL_MAX_DSN_LENGTH)
        throw CDBException("IM002", 0,
                           "The name of a data source can't have more than " + std::to_string(SQL_MAX_DSN_LENGTH) +
                               " bytes: " + name);
    std::vector<DataSource> sources;
    listDataSources(sources);
    const auto found =
        std::ranges::find_if(sources, [&](const DataSource& source) { return isSameAscii(source.name, name); });
    const CString unread = unreadableUserFile();
    if (found == sources.end() || (!unread.empty() && isInUserFile(name)))
        throw CDBException("IM002", 0,
                           "There is no data source called " + name +
                               (unread.empty() ? "" : "; " + unread + " is not read, because it is not writable"));
    // Of two sources whose names differ in letter case only, the driver manager always opens the first.
    const bool another = found->name != name && std::ranges::find(sources, name, &DataSource::name) != sources.end();
    if (another)
        throw CDBException("IM002", 0, "The data source " + found->name + " hides the one called " + name);
    if (name.starts_with('{') || name.find(';') != CString::npos)
        throw CDBException("IM002", 0, "The name of a data source can't start with { or hold a semicolon: " + name);
    return "DSN=" + name + ";";
}

// MariaDB's driver only takes the login timeout from the connection string; other drivers ignore unknown
// attributes.
CString connectionSuffix(const CString& connection, bool isReadOnly, std::chrono::seconds loginTimeout)
{
    CString attributes = "CONN_TIMEOUT=" + std::to_string(loginTimeout.count()) + ";";
    if (isReadOnly)
        attributes += "NoCreat=1;"; // so SQLite does not create the file
    if (isReadOnly && hasDriver(connection, {"sqlite"}) && settingOf(connection, "Timeout").empty())
        attributes += kLockTimeout;
    return attributes;
}

// The data source goes to the front, where every driver finds it, however it reads the braces of other values.
CString plainConnection(const CString& connection)
{
    CString source, rest = connection;
    for (ConnectAttribute attribute; !(attribute = attributeOf(rest, "DSN")).whole.empty();) {
        if (source.empty() && !trimmed(attribute.value).empty())
            source = dataSourceText(withoutBraces(attribute.value));
        rest.erase(static_cast<std::size_t>(attribute.whole.data() - rest.data()), attribute.whole.size());
    }
    return source + rest;
}

CString dataSourceOf(const CString& connection)
{
    return withoutBraces(attributeOf(connection, "DSN").value);
}

CString identityOf(const CString& source)
{
    // Drivers read the server's name under either keyword.
    constexpr std::pair<const char*, const char*> attributes[] = {
        {"Driver", "Driver"},     {"DSN", "DSN"},   {"FILEDSN", "FILEDSN"},  {"Server", "Server"},
        {"Servername", "Server"}, {"Port", "Port"}, {"Database", "Database"}};
    const CString connection = source.find('=') == CString::npos ? "DSN=" + source : source;
    CString identity;
    for (const auto& [name, shown] : attributes) {
        CString value = withoutBraces(attributeOf(connection, name).value);
        if (value.empty())
            continue;
        // A file has many names; relative ones depend on the current folder.
        if (std::string_view(name) == "Database" && hasDriver(connection, {"sqlite"}))
            value = std::filesystem::absolute(value).lexically_normal().string();
        identity += CString(identity.empty() ? "" : ";") + shown + "=" + value;
    }
    return identity;
}
