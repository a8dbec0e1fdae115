#pragma once

#include "Base/Text.h"

/// Empties a text that held a password and overwrites its whole storage, the bytes past its end included. The capacity
/// stays.
void wipe(CString& secret);

/// A text that is wiped when it goes out of scope. Build it in place: a copy, or growth, leaves bytes behind.
struct Secret
{
    CString text;

    Secret() = default;
    /// Moves the text. A short text lies inside the string object, so its bytes stay in the object that it is moved
    /// from.
    explicit Secret(CString secret) : text(std::move(secret)) {}
    ~Secret() { wipe(text); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
};

/// A scope around calls of libraries that copy a password and don't wipe it. Blocks that they free in the scope are
/// overwritten. The end of the scope wipes the stack below it and the small blocks that the allocator keeps for reuse.
/// It works on the whole process: blocks that other threads free meanwhile are overwritten, too. Scopes must not
/// overlap, because the end of one turns the overwriting off.
class MemoryWipe
{
public:
    MemoryWipe();
    ~MemoryWipe();
    MemoryWipe(const MemoryWipe&) = delete;
    MemoryWipe& operator=(const MemoryWipe&) = delete;
};

/// Disables core dumps of this process (prctl(2), PR_SET_DUMPABLE). Only a debugger with CAP_SYS_PTRACE can attach to
/// it. Lasts until the process ends or executes another program.
void keepOutOfCores();
