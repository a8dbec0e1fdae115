#pragma once

#include "Platform/Files/FileError.h"
#include "Platform/Text.h"

/// Reads a whole file as bytes into `out`. A folder counts as one that can't be opened (`accessDenied`). On failure
/// `out` is empty.
FileCause readFile(const CString& fileName, CString& out);

/// `none` when the file can be opened for reading and isn't a folder, else why not.
FileCause testReadable(const CString& fileName);

/// A file that appears whole or not at all: what is written goes into a temporary file beside it, which takes the
/// name's place on commit(). A symbolic link is followed, an existing file keeps its permissions, and a name that is
/// no regular file (a device, a pipe) is written directly. Without commit() the old file is still there, untouched.
class AtomicFile
{
public:
    explicit AtomicFile(const CString& fileName);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends bytes; after a failure does nothing.
    void write(std::string_view bytes);

    /// Brings everything to the disk and puts the file in its place. `none`, or the first failure of the whole run.
    FileCause commit();

    /// `none` while nothing has failed, the opening included.
    FileCause queryCause() const { return cause; }

private:
    void open(const CString& fileName);
    void fail();
    void flush();

    CString target;      // where the file goes, links followed
    CString temporary;   // empty when the target is written directly
    CString buffer;      // gathers small writes
    int descriptor = -1; // -1 when not open
    FileCause cause = FileCause::none;
};
