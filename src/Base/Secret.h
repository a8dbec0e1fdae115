#pragma once

#include "Base/Text.h"

/// Empties a text that held a password, and leaves none of its bytes in memory, those past its end included.
void wipe(CString& secret);

/// A text that is wiped when it goes out of sight. Build it in place: a copy, or growth, leaves bytes behind.
struct Secret
{
    CString text;

    Secret() = default;
    explicit Secret(CString secret) : text(std::move(secret)) {}
    ~Secret() { wipe(text); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
};

/// For calls of libraries that copy a password and don't wipe it: what they free while one lives is overwritten, and at
/// its end what they have left on the stack and in the small blocks that the allocator keeps at hand.
class MemoryWipe
{
public:
    MemoryWipe();
    ~MemoryWipe();
    MemoryWipe(const MemoryWipe&) = delete;
    MemoryWipe& operator=(const MemoryWipe&) = delete;
};

/// From here on the process leaves no core dump, whatever ends it, and only its own user's debugger with the right to
/// trace anything can look into it.
void keepOutOfCores();
