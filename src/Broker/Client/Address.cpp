#include "Broker/Client/Address.h"

#include "Files/UserFolders.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLocal = "local";

// Characters that could end or quote a value in a connection string. A folder with one of them is refused.
constexpr std::string_view kNotInValue = ";{}=\r\n";

[[noreturn]] void raise(const fs::path& file)
{
    throw std::system_error(errno, std::generic_category(), file.string());
}

// Creates the folder and the file if needed and makes both private to the user, whatever the umask is and whoever
// created them.
void makePrivate(const fs::path& folder, const fs::path& file)
{
    std::error_code failure;
    if (fs::create_directories(folder.parent_path(), failure); failure)
        throw std::system_error(failure, folder.parent_path().string());
    // The umask applies to the mode of mkdir(2), and an existing folder may be open to others. chmod(2) corrects both.
    if ((mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) || chmod(folder.c_str(), S_IRWXU) != 0)
        raise(folder);
    const int made = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (made < 0)
        raise(file);
    const bool isPrivate = fchmod(made, S_IRUSR | S_IWUSR) == 0;
    close(made);
    if (!isPrivate)
        raise(file);
}

// Returns the database file of the user, whether it exists or not.
fs::path localFile()
{
    const fs::path folder = dataFolder();
    if (folder.empty())
        throw std::runtime_error("The user has no home folder");
    const fs::path file = folder / "types.db";
    if (file.string().find_first_of(kNotInValue) != CString::npos)
        throw std::invalid_argument("A database can't lie in " + folder.string());
    return file;
}

} // namespace

Address::Address(const CString& text)
{
    const auto read = readServerAddress(text, 0);
    if (!read || read->port == 0)
        throw std::invalid_argument("Not an address: " + text);
    address = *read;
}

bool Address::isLocal() const
{
    return address.server == kLocal;
}

bool Address::exists() const
{
    return !isLocal() || fs::exists(localFile());
}

CString Address::connectString(bool isForReading) const
{
    if (isLocal() && isForReading)
        return "Driver=SQLite3;Database=" + localFile().string() + ";Timeout=5000;NoCreat=1;";
    // With a write-ahead log, readers don't wait for a writer, and a commit doesn't wait for the disk. Commits survive
    // the end of the process, however it ends. The driver waits twice the timeout for a lock: 10 s.
    if (isLocal()) {
        const fs::path file = localFile();
        makePrivate(file.parent_path(), file);
        return "Driver=SQLite3;Database=" + file.string() + ";Timeout=5000;JournalMode=WAL;SyncPragma=NORMAL;";
    }
    // Debian's packages register the drivers under these names. readServerAddress() has refused characters that are
    // special here.
    return "Driver={PostgreSQL Unicode};Server=" + address.server + ";Port=" + std::to_string(address.port) +
           ";Database=typeforge;";
}
