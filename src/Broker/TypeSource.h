#pragma once

#include "Base/Text.h"

#include <vector>

/// The source that types come from, as a repository keeps it.
struct TypeSource
{
    CString name = {};     ///< the full name of a file, a connection string without secrets; "" if there is none
    bool isLasting = true; ///< false for a pipe: the same name stands for something else the next time

    /// Whether a type that a repository has from `other` comes from this source.
    bool isSame(const CString& other) const { return isLasting && !name.empty() && name == other; }
};

/// A file or a folder as a source, by its full name; standard input and pipes are not lasting.
TypeSource fileSource(const CString& file);

/// A data source, by its name or a connection string.
TypeSource tableSource(const CString& source);

/// What a source is called beside others: a file without its folder, unless one of the others has that name, too;
/// "unknown source" for "". `others` may hold the source itself.
CString shortName(const CString& source, const std::vector<CString>& others);
