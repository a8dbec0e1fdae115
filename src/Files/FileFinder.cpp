#include "Files/FileFinder.h"

#include "Files/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <filesystem>
#include <linux/magic.h>
#include <linux/openat2.h>
#include <set>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

// A name is first opened as it is, which takes one call for nearly all files. Only a missing name is looked up in the
// listings of its folders, each of which is read once and cached under the folder's identity. Listed names and the
// names tried from listings count as lookups, which are limited.
namespace {

constexpr std::size_t kMaxLookups = 200'000; // for each finder, so that a source can't keep it busy
constexpr std::size_t kLongestShown = 1'000; // bytes
constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// Returns the scheme before the first colon; "" if the reference has none. A scheme begins with a letter (RFC 3986,
// 3.1). Its other characters are not checked, because a relative path with a colon in its first segment must begin with
// "./" (4.2).
std::string_view schemeOf(std::string_view reference)
{
    const std::size_t colon = reference.find_first_of(":/?#");
    if (colon == std::string_view::npos || reference[colon] != ':')
        return {};
    return kLetters.find(reference[0]) == std::string_view::npos ? std::string_view() : reference.substr(0, colon);
}

// Removes "//host" from the front. Returns false if that is another host than this one. In a file URI (RFC 8089), an
// empty host and "localhost" mean this one.
bool dropHost(std::string_view& reference)
{
    if (!reference.starts_with("//"))
        return true;
    const std::size_t end = std::min(reference.find('/', 2), reference.size());
    const CString host = lowerAscii(reference.substr(2, end - 2));
    reference.remove_prefix(end);
    return host.empty() || host == "localhost";
}

FileId idOf(const struct stat& status)
{
    return {status.st_dev, status.st_ino};
}

// Returns whether an errno value says that nothing is there. Other errors mean that there may be something that the
// process can't access.
bool meansMissing(int error)
{
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

// Returns the folder as written in the name. A descriptor's file has no folder, so the current one is used.
CString writtenFolderOf(const CString& fileName)
{
    const bool isDescriptor =
        fileName == "/dev/stdin" || fileName.starts_with("/dev/fd/") || fileName.starts_with("/proc/self/fd/");
    return isDescriptor ? "" : fileName.substr(0, fileName.rfind('/') + 1);
}

// Opens a name without access to its content (O_PATH). Links of /proc that lead to an open file, as /dev/stdin does,
// are not followed (ELOOP), because an open file has no folder with other files. Kernels without openat2(2), and
// sandboxes that forbid it, follow them.
int openPlace(const CString& name)
{
    struct open_how how = {};
    how.flags = O_PATH | O_CLOEXEC;
    how.resolve = RESOLVE_NO_MAGICLINKS;
    const long opened = ::syscall(SYS_openat2, AT_FDCWD, name.c_str(), &how, sizeof how);
    const bool isKnown = opened >= 0 || (errno != ENOSYS && errno != EPERM);
    return isKnown ? static_cast<int>(opened) : ::open(name.c_str(), O_PATH | O_CLOEXEC);
}

// Returns whether a file belongs to the kernel, so that reading it might never end or have an effect. /dev/shm holds
// ordinary files. Returns true if the system doesn't say. The rest of /dev and what is mounted below /sys have the
// types of ordinary file systems, so they are recognised by name.
bool isKernelFile(int place)
{
    struct statfs system = {};
    if (::fstatfs(place, &system) != 0 || system.f_type == PROC_SUPER_MAGIC || system.f_type == SYSFS_MAGIC)
        return true;
    std::error_code ignored;
    const CString name = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(place), ignored).string();
    return name.starts_with("/sys/") || (name.starts_with("/dev/") && !name.starts_with("/dev/shm/"));
}

// Returns the id of the regular file under a name. Returns nothing, with an errno value in `error`, if there is none
// that may be read; `error` is 0 if something else is there. Tests the opened file, not its name again, so that both
// results are of one file.
std::optional<FileId> identifyFile(const CString& name, int& error)
{
    const Descriptor place(openPlace(name));
    struct stat status;
    if (!place.isOpen() || ::fstat(place.get(), &status) != 0) {
        error = errno;
        return std::nullopt;
    }
    error = 0;
    if (!S_ISREG(status.st_mode) || isKernelFile(place.get()))
        return std::nullopt;
    return idOf(status);
}

} // namespace

CString withoutEscapes(std::string_view uri)
{
    CString out;
    out.reserve(uri.size());
    for (std::size_t i = 0; i < uri.size(); ++i) {
        const char* const digits = uri.data() + i + 1;
        unsigned char byte = 0;
        const bool isEscape =
            uri[i] == '%' && i + 2 < uri.size() && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        out += isEscape ? static_cast<char>(byte) : uri[i];
        i += isEscape ? 2 : 0;
    }
    return out;
}

CString localPath(std::string_view reference)
{
    CString slashed(trimmed(reference));
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    std::string_view rest = std::string_view(slashed).substr(0, slashed.find_first_of("?#"));
    if (const std::string_view scheme = schemeOf(rest); !scheme.empty()) {
        if (lowerAscii(scheme) != "file")
            return {};
        rest.remove_prefix(scheme.size() + 1);
    }
    if (!dropHost(rest))
        return {};
    CString path = withoutEscapes(rest);
    return path.find('\0') == CString::npos ? path : CString();
}

CString shownFrom(const CString& from, const CString& folder, const CString& path, const FoundFile& file)
{
    const bool isBeside = !path.starts_with('/') && file.name.starts_with(folder);
    CString shown = isBeside ? writtenFolderOf(from) : CString();
    std::string_view rest = std::string_view(file.name).substr(isBeside ? folder.size() : 0);
    // Component by component, without "./" and repeated slashes. ".." stays, because a link may come before it.
    while (!rest.empty()) {
        const std::string_view component = rest.substr(0, std::min(rest.find('/'), rest.size() - 1) + 1);
        if (component != "./" && (component != "/" || shown.empty()))
            shown += component;
        rest.remove_prefix(component.size());
    }
    return shown.size() <= kLongestShown ? shown : file.name;
}

CString folderOf(const CString& fileName)
{
    const CString folder = writtenFolderOf(fileName);
    std::error_code failure;
    // Resolved, because a long chain of "../x/y.xsd" would grow into a path too long to open.
    const std::filesystem::path resolved = std::filesystem::canonical(folder.empty() ? "." : folder, failure);
    if (failure)
        return folder.empty() ? "./" : folder;
    const CString name = resolved.string();
    return name.ends_with('/') ? name : name + '/';
}

std::string_view stemOf(std::string_view fileName)
{
    fileName.remove_prefix(fileName.rfind('/') + 1);
    return fileName.substr(0, fileName.rfind('.'));
}

std::optional<FileId> identify(const CString& fileName)
{
    struct stat status;
    if (stat(fileName.c_str(), &status) != 0)
        return std::nullopt;
    return idOf(status);
}

std::optional<FoundFile> FileFinder::find(const CString& folder, const CString& path)
{
    if (path.empty())
        return std::nullopt;
    const CString name = path.starts_with('/') ? path : folder + path;
    // Misses are cached, too: references to one missing file took seconds in a source of 4 kB.
    const auto [place, isNew] = known.try_emplace(name);
    if (isNew)
        place->second = search(folder, path, name);
    return place->second;
}

std::optional<FoundFile> FileFinder::search(const CString& folder, const CString& path, const CString& name)
{
    int error = 0;
    if (const auto id = identifyFile(name, error))
        return FoundFile{name, *id};
    // A folder, a pipe or a file of the kernel has this name, so names in another case are not tried.
    if (error == 0)
        return std::nullopt;
    isIncomplete = !meansMissing(error);
    if (auto found = findInAnyCase(folder, path))
        return found;
    // If something was hidden, the exact name counts as found; opening it then reports the error.
    return isIncomplete ? std::optional(FoundFile{name, {}}) : std::nullopt;
}

// Walks the path component by component, with every folder that the components so far can mean. Folders are compared by
// identity, so "a/../a/../a" beside an "A" is not followed in all its combinations. Each folder has one name, so names
// don't grow on the way.
std::optional<FoundFile> FileFinder::findInAnyCase(const CString& folder, std::string_view path)
{
    std::vector<FoundFile> found{{path.starts_with('/') ? "/" : folder, {}}};
    if (const auto id = identify(found[0].name))
        found[0].id = *id;
    while (!path.empty() && !found.empty()) {
        const std::string_view component = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(component.size() + 1, path.size()));
        if (!component.empty() && component != ".")
            found = step(found, component);
    }
    // The first that may be read, in the order of step().
    for (const FoundFile& file : found) {
        int ignored = 0;
        if (identifyFile(file.name, ignored))
            return file;
    }
    return std::nullopt;
}

// Returns the files and folders that `component` can mean in any of the folders, each once. Empty if the limit is
// reached.
std::vector<FoundFile> FileFinder::step(const std::vector<FoundFile>& folders, std::string_view component)
{
    std::vector<FoundFile> found;
    std::set<FileId> visited;
    for (const FoundFile& folder : folders) {
        const CString prefix = folder.name.ends_with('/') ? folder.name : folder.name + '/';
        for (const CString& like : namesLike(folder, component)) {
            if (++lookups > kMaxLookups)
                return {};
            CString name = prefix + like;
            struct stat status;
            if (::stat(name.c_str(), &status) != 0)
                isIncomplete |= !meansMissing(errno);
            else if (const FileId id = idOf(status); visited.insert(id).second)
                found.push_back({S_ISDIR(status.st_mode) ? folderNames.try_emplace(id, name).first->second : name, id});
        }
    }
    return found;
}

std::vector<CString> FileFinder::namesLike(const FoundFile& folder, std::string_view component)
{
    // directory_iterator doesn't list "..", and it has no case. The caller skips ".".
    if (component == "..")
        return {CString(component)};
    std::vector<CString> names;
    // Only the case of ASCII letters is ignored, because that of other letters depends on a locale.
    const auto [first, last] = list(folder).equal_range(lowerAscii(component));
    for (auto name = first; name != last; ++name)
        names.push_back(name->second);
    // The exact name comes first, the others in byte order, so that the result does not depend on the listing's order.
    std::sort(names.begin(), names.end(), [component](const CString& a, const CString& b) {
        return std::pair(a != component, std::string_view(a)) < std::pair(b != component, std::string_view(b));
    });
    return names;
}

const FileFinder::Names& FileFinder::list(const FoundFile& folder)
{
    const auto [listing, isNew] = listings.try_emplace(folder.id);
    if (isNew) {
        std::error_code failure;
        for (std::filesystem::directory_iterator entry(folder.name, failure), end; !failure && entry != end;
             entry.increment(failure)) {
            if (++lookups > kMaxLookups)
                break;
            const CString name = entry->path().filename().string();
            listing->second.names.emplace(lowerAscii(name), name);
        }
        // EACCES hides nothing: a folder that can't be listed still opens a file by its exact name, which was tried
        // before.
        listing->second.isIncomplete = failure && !meansMissing(failure.value()) && failure.value() != EACCES;
    }
    isIncomplete |= listing->second.isIncomplete;
    return listing->second.names;
}
