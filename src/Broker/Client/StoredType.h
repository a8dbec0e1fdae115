#pragma once

#include "Base/Text.h"
#include "Broker/IVorn.h"

#include <string_view>

/// A type to be stored, under its full name. The document is somebody else's.
struct NamedDocument
{
    CString name;
    std::string_view document;
};

/// Where types come from, and when.
struct SourceMark
{
    CString source; ///< "" if it isn't known
    CString time;   ///< in UTC, "2026-01-31T23:59:59Z"
};

/// What became of a type.
struct StoredType
{
    enum Code : unsigned
    {
        created = 0,
        replaced = 1,
        exists = 2,
        unchanged = 3, ///< exists with the same document
        refused = 99   ///< the document is none of a type
    };

    Code code = created;
    SourceMark mark = {}; ///< of the type that existed before
};

/// What is done with a type that exists.
struct ExistingRules
{
    VornExisting changed;   ///< with another document
    VornExisting unchanged; ///< with the same one

    VornExisting ruleFor(bool isSame) const { return isSame ? unchanged : changed; }
};
