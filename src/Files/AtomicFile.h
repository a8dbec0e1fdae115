#pragma once

#include "Base/Text.h"
#include "Files/Descriptor.h"
#include "Files/FileError.h"
#include "Files/TemporaryFile.h"

#include <sys/types.h>

/// A file that appears whole or not at all: what is written goes into a temporary file beside it, which takes the
/// name's place on commit(). A symbolic link is followed, an existing file keeps its owner, group and permissions.
/// Without commit() the old file is still there, untouched.
///
/// An existing file that can't be replaced so, since its folder may not be written, something is mounted on it, its
/// owner or group is for others to give, or an ACL says more, is overwritten where it stands; only then, and only by a
/// fault of the disk or by the end of the process, it can be left with a beginning of the new file and the rest of the
/// old one, in the new one's length.
class AtomicFile
{
public:
    /// What becomes of a name that is no regular file, as a pipe or a device.
    enum class Special
    {
        refused, ///< at once, with `generic`
        written  ///< directly
    };

    explicit AtomicFile(const CString& fileName, Special special = Special::refused);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends bytes; after a failure does nothing.
    void write(std::string_view bytes);

    /// Has commit() leave an existing file as it is, with its inode and time, if it holds the same bytes.
    /// `ignoredCount` bytes from `ignoredFrom` on may differ.
    void keepUnchanged(off_t ignoredFrom, off_t ignoredCount);

    /// Brings everything to the disk and puts the file in its place. `none`, or the first failure of the whole run.
    FileCause commit();

    /// `none` while nothing has failed, the opening included.
    FileCause queryCause() const { return cause; }

private:
    void open(const CString& fileName, Special special);
    bool takeRights(const struct stat& old) const;
    bool openMemory();
    void fail();
    void flush();
    bool isUnchanged() const;
    bool place();
    bool overwrite() const;

    CString target;          // where the file goes, links followed; empty when it is written directly
    TemporaryFile temporary; // beside the target; not there for what is overwritten where it stands
    bool replaces = false;   // there is a file that may be written
    bool keepsUnchanged = false;
    off_t ignoredFrom = 0, ignoredEnd = 0;
    CString buffer; // gathers small writes
    Descriptor out;
    FileCause cause = FileCause::none;
};
