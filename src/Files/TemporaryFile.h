#pragma once

#include "Base/Text.h"

/// A file that exists as long as the object, unless it is renamed. It is also deleted by exit() and if a signal that
/// can be caught ends the process (an interrupt, a hang-up, a resource limit). A crash or SIGKILL leaves it behind. The
/// object can't be moved, because its address is in a list. One thread at a time may create, rename and remove files.
class TemporaryFile
{
public:
    TemporaryFile() = default;
    ~TemporaryFile() { remove(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Creates a file that only the user can read, in `folder` (empty: the current one). Its name is `prefix`, six
    /// random characters and `suffix`. Call it once for each object. Returns a descriptor for reading and writing,
    /// which the caller owns, or -1 with errno.
    int create(const CString& folder, const char* prefix, const char* suffix = "");

    /// Deletes the file. Does nothing if it does not exist.
    void remove();

    /// Renames the file to `target` and replaces what is there. Returns false with errno on failure; the file then
    /// stays.
    bool renameTo(const CString& target);

    /// Returns the file's absolute name, the intended one if it can't be created; empty before create().
    const CString& queryName() const { return name; }

    /// Returns whether the file exists: false before create(), if create() failed, and after renameTo() or remove().
    bool exists() const { return isCreated; }

    /// Deletes the files of all objects. Safe in a signal handler.
    static void deleteAll() noexcept;

private:
    void forget();

    CString name;
    bool isCreated = false;
    TemporaryFile* next = nullptr;
};
