#pragma once

#include "Base/KeyedTable.h"
#include "Base/Text.h"

#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

/// Returns the path of the local file that a schemaLocation names, absolute or relative to the document that holds it.
/// `reference` is a URI reference (RFC 3986); its fragment and query are dropped, `\` counts as `/`, and percent
/// escapes are decoded. Empty if it names no local file: a scheme other than file, another host, or an escaped NUL. A
/// Windows path with a drive letter counts as a URI with a scheme, so it names no local file.
CString localPath(std::string_view reference);

/// Returns a URI (RFC 3986) with its percent escapes decoded. A "%" that begins no escape stays.
CString withoutEscapes(std::string_view uri);

/// The identity of a file: device and inode.
using FileId = std::pair<unsigned long, unsigned long>;

/// A regular file that was found. `name` opens it. The id is zero for a file that the process may not access.
struct FoundFile
{
    CString name;
    FileId id;
};

/// Finds files by names whose letters may have the wrong case, because schemas and DTDs often come from systems that
/// ignore case. Caches hits and misses. After 200,000 lookups and listed names it only tries exact names, so that a
/// source can't keep it busy. Files that appear after a lookup are not found, so each import has its own finder.
class FileFinder
{
public:
    /// Returns the regular file `path`, absolute or relative to `folder`, which ends in a slash. If there is none,
    /// returns a file whose name differs only in the case of ASCII letters. Among several, each component is compared
    /// from the left: the exact name comes first, then byte order.
    ///
    /// Returns nothing for a folder, device or pipe, and for a file of /proc, /sys or /dev (except /dev/shm), whatever
    /// link leads there. A file that the process may not access counts as found, because it may exist.
    std::optional<FoundFile> find(const CString& folder, const CString& path);

private:
    using Names = std::unordered_multimap<CString, CString>; // by the name in lower case

    std::optional<FoundFile> search(const CString& folder, const CString& path, const CString& name);
    std::optional<FoundFile> findInAnyCase(const CString& folder, std::string_view path);
    std::vector<FoundFile> step(const std::vector<FoundFile>& folders, std::string_view component);
    std::vector<CString> namesLike(const FoundFile& folder, std::string_view component);
    const Names& list(const FoundFile& folder);

    // The names in a folder. Incomplete if the system failed before the end, so that a missing name proves nothing.
    struct Listing
    {
        Names names;
        bool isIncomplete = false;
    };

    std::unordered_map<CString, std::optional<FoundFile>, KeyHash> known; // cache, by the name as given
    std::map<FileId, Listing> listings;                                   // each folder is listed once
    std::map<FileId, CString> folderNames; // the first name under which each folder was found
    std::size_t lookups = 0;
    bool isIncomplete = false; // true if the system hid something from the current search
};

/// Returns the name under which a message shows a file that FileFinder::find() found as `path`. The file was named by
/// another one, which is shown as `from` and lies in `folder`. A relative `path` is shown relative to `from`, without
/// needless "./". Absolute if a chain of files would make the name very long.
CString shownFrom(const CString& from, const CString& folder, const CString& path, const FoundFile& file);

/// Returns the folder of a file, links resolved, with a final slash; the current folder for standard input and other
/// open descriptors (/dev/fd/3). Unresolved if the folder can't be found.
CString folderOf(const CString& fileName);

/// Returns a file's name without its folder and its last suffix.
std::string_view stemOf(std::string_view fileName);

/// Returns the id of whatever `fileName` names; nothing if it does not exist.
std::optional<FileId> identify(const CString& fileName);
