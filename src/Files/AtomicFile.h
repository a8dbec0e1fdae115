#pragma once

#include "Base/Text.h"
#include "Files/Descriptor.h"
#include "Files/TemporaryFile.h"

#include <sys/types.h>

/// A file that appears whole or not at all: the content goes into a temporary file beside it, which commit() renames. A
/// symbolic link is followed. An existing file keeps its owner, group and permissions, and stays untouched without a
/// commit().
///
/// Some existing files can't be replaced by a rename: the folder is not writable, something is mounted on the file, the
/// process may not set its owner or group, or an ACL is involved. Such a file is overwritten in place. Only then can a
/// disk fault or the end of the process leave a mixture: the beginning of the new content, the rest of the old one, and
/// the new length.
class AtomicFile
{
public:
    /// What to do if the name is not a regular file but, for example, a pipe or a device.
    enum class Special
    {
        refused, ///< fails at once: accessDenied for a folder, else generic
        written  ///< is written directly
    };

    /// Opens the file for writing; queryError() tells whether that failed. The temporary file exists from then on, in
    /// the folder of the target, because a rename works only within a file system.
    explicit AtomicFile(const CString& fileName, Special special = Special::refused);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends bytes. Does nothing after a failure. A failure may show only at commit().
    void write(std::string_view bytes);

    /// Makes commit() keep an existing file, with its inode and time, if it holds the same bytes. `ignoredCount` bytes
    /// from offset `ignoredFrom` on may differ. A build tool that compares times then sees no change. The range is for
    /// a time in the content.
    void keepUnchanged(off_t ignoredFrom, off_t ignoredCount);

    /// Syncs the content to the disk and puts the file in its place. Returns queryError(). Call it once, at the end.
    int commit();

    /// Returns the errno value of the first failure, the opening included; 0 if nothing has failed yet.
    int queryError() const { return error; }

private:
    void open(const CString& fileName, Special special);
    bool copyPermissions(const struct stat& old) const;
    bool openMemory();
    void fail();
    void flush();
    bool isUnchanged() const;
    bool place();
    bool overwrite() const;

    CString target;          // where the file goes, links resolved; empty if written directly
    TemporaryFile temporary; // beside the target; absent if the target is overwritten in place
    bool replaces = false;   // true if a writable file exists
    bool keepsUnchanged = false;
    off_t ignoredFrom = 0, ignoredEnd = 0;
    CString buffer; // gathers small writes
    Descriptor out;
    int error = 0;
};
