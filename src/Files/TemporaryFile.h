#pragma once

#include "Base/Text.h"

/// A file that exists as long as the object, unless it is given a lasting name. It is deleted also when the process is
/// ended by a signal that lets it (an interrupt, a hang-up, a limit), or by exit().
class TemporaryFile
{
public:
    TemporaryFile() = default;
    ~TemporaryFile() { remove(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Makes a new file, readable by the user alone, in `folder` ("": the current one): `prefix`, six characters of its
    /// own, `suffix`. Once for each object. Answers its descriptor, for reading and writing, or -1 with errno.
    int create(const CString& folder, const char* prefix, const char* suffix = "");

    /// Deletes the file. Does nothing when it isn't there.
    void remove();

    /// Puts the file in the place of `target`. False with errno when that fails; it is then still there.
    bool renameTo(const CString& target);

    /// The absolute name that the file has, or would have got where it can't be made; "" before create().
    const CString& queryName() const { return name; }

    /// False before create(), where that failed, and once the file has its lasting name or was removed.
    bool exists() const { return isMade; }

    /// Deletes the files of all objects. Safe in a signal handler.
    static void deleteAll() noexcept;

private:
    void forget();

    CString name;
    bool isMade = false;
    TemporaryFile* next = nullptr;
};
