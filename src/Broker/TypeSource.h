#pragma once

#include "Base/Text.h"

#include <vector>

/// The source of types, as a repository stores it.
struct TypeSource
{
    CString name = {};        ///< full name of a file, or identityOf() a data source; empty if none
    bool isPersistent = true; ///< false for a pipe: next time the same name means another source

    /// Returns whether `other`, the stored source of a type, is this source.
    bool isSame(const CString& other) const { return isPersistent && !name.empty() && name == other; }
};

/// Returns a file or folder as a source, by its full name. Standard input and pipes are not persistent.
TypeSource fileSource(const CString& file);

/// Returns the shortest clear name of each source: a file without its folder, unless another source has that name too;
/// "unknown source" for an empty one.
std::vector<CString> shortNames(const std::vector<CString>& sources);
