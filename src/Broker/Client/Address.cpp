#include "Broker/Client/Address.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLocal = "local";
constexpr std::string_view kDigits = "0123456789";

// What would end a value of a connection string, or start a quoted one.
constexpr std::string_view kNotInAddress = ";{}=\r\n";

const passwd& account()
{
    errno = 0;
    if (const passwd* entry = getpwuid(geteuid()))
        return *entry;
    throw std::system_error(errno ? errno : ENOENT, std::generic_category(), "The user has no account");
}

// Of the XDG base directories; a relative path there counts as none.
fs::path dataFolder()
{
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/')
        return data;
    const char* home = std::getenv("HOME");
    return fs::path(home && *home ? home : account().pw_dir) / ".local/share";
}

CString localFile()
{
    const fs::path folder = dataFolder() / "typeforge";
    if (fs::create_directories(folder))
        fs::permissions(folder, fs::perms::owner_all);
    const CString file = folder / "types.db";
    if (file.find_first_of(kNotInAddress) != CString::npos)
        throw std::invalid_argument("A database can't lie in " + folder.string());
    return file;
}

} // namespace

Address::Address(const CString& text)
{
    const std::size_t colon = text.rfind(':'); // an IPv6 address has more of them
    if (colon == 0 || colon == CString::npos || text.find_first_of(kNotInAddress) != CString::npos)
        throw std::invalid_argument("Not an address: " + text);
    server = text.substr(0, colon);
    port = text.substr(colon + 1);
    if (port.empty() || port.find_first_not_of(kDigits) != CString::npos)
        throw std::invalid_argument("Not a port: " + port);
}

bool Address::isLocal() const
{
    return server == kLocal;
}

CString Address::connectString() const
{
    // A reader doesn't wait for a writer with a write-ahead log, and one commit costs no wait for the disk; what was
    // committed outlives the end of the process, however it ends.
    if (isLocal())
        return "Driver=SQLite3;Database=" + localFile() + ";Timeout=10000;JournalMode=WAL;SyncPragma=NORMAL;";
    return "Driver={PostgreSQL Unicode};Server=" + server + ";Port=" + port + ";Database=typeforge;";
}

CString loginName()
{
    return account().pw_name;
}
