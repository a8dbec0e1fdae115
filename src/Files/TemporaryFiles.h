#pragma once

#include "Files/FileError.h"
#include "Files/TemporaryFile.h"

#include <list>

/// Files that exist as long as the object, readable by the user alone.
class TemporaryFiles
{
public:
    /// Makes a new file `folder`/QEL_*`suffix` that holds `bytes`. `name` becomes its absolute name, also when it can't
    /// be made.
    FileCause add(const CString& folder, std::string_view bytes, CString& name, const char* suffix = ".xml");

private:
    std::list<TemporaryFile> files;
};
