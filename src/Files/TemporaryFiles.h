#pragma once

#include "Files/TemporaryFile.h"

#include <list>

/// Files that exist as long as the object and that only the user can read. For files that another program, such as a
/// viewer, opens by name.
class TemporaryFiles
{
public:
    /// Creates a file `folder`/QEL_*`suffix` that holds `bytes`. Sets `name` to its absolute name, also on failure.
    /// Returns 0, or the errno value of the failure.
    int add(const CString& folder, std::string_view bytes, CString& name, const char* suffix = ".xml");

private:
    // A list, because a TemporaryFile can't be moved.
    std::list<TemporaryFile> files;
};
