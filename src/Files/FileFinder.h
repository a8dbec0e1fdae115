#pragma once

#include "Base/Text.h"

#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

/// The path of the local file that a schemaLocation names, relative to the document that holds it or absolute: the URI
/// reference (RFC 3986) without fragment and query, `\` read as `/`, percent escapes decoded. Empty when it names none:
/// another scheme than file, another host, an escape that stands for a NUL.
CString localPath(std::string_view reference);

/// The bytes that the percent escapes of a URI (RFC 3986) stand for, in their places. What makes no escape stays.
CString withoutEscapes(std::string_view uri);

/// What makes two names the same file: device and inode.
using FileId = std::pair<unsigned long, unsigned long>;

/// A regular file that was found, by the name under which it can be opened.
struct FoundFile
{
    CString name;
    FileId id;
};

/// Finds files by names that may be off in the case of their letters. Remembers what it has found and missed. After
/// 200,000 looks at files and names in folders it takes names only as they are given.
class FileFinder
{
public:
    /// The regular file `path`, relative to `folder` (which ends in a slash) or absolute. When there is none, the one
    /// whose name differs only in the case of ASCII letters; of several the first one by its folders and its name from
    /// the left, each as given before all others, those in the order of their bytes. Nothing else is found: no folder,
    /// device or pipe, and no file of /proc, /sys or /dev, whatever link leads there. What the system doesn't let us
    /// look at counts as found, since it may be there.
    std::optional<FoundFile> find(const CString& folder, const CString& path);

private:
    using Names = std::unordered_multimap<CString, CString>; // by the name in lower case

    std::optional<FoundFile> search(const CString& folder, const CString& path, const CString& name);
    std::optional<FoundFile> findInAnyCase(const CString& folder, std::string_view path);
    std::vector<FoundFile> step(const std::vector<FoundFile>& folders, std::string_view component);
    std::vector<CString> namesLike(const FoundFile& folder, std::string_view component);
    const Names& list(const FoundFile& folder);

    struct Listing
    {
        Names names;
        bool isBlind = false;
    };

    std::unordered_map<CString, std::optional<FoundFile>> known; // by the name as it is given
    std::map<FileId, Listing> listings;                          // each folder is read once
    std::map<FileId, CString> folderNames;                       // the first one of each
    std::size_t looks = 0;
    bool isBlind = false; // the system has kept something from the search in hand
};

/// The name under which a message shows a file that was found as `path` (see FileFinder::find()) from another one,
/// which is shown as `from` and lies in `folder`: beside `from` if `path` is relative, without needless "./". Absolute
/// where a chain of files would make the name very long.
CString shownFrom(const CString& from, const CString& folder, const CString& path, const FoundFile& file);

/// The folder that a file lies in, links resolved, with a final slash; the current one for standard input and devices.
CString folderOf(const CString& fileName);

/// A file's name without its folder and what stands behind the last dot.
std::string_view stemOf(std::string_view fileName);

/// The identity of what `fileName` names, whatever it is; nothing when there is no such file.
std::optional<FileId> identify(const CString& fileName);
