#pragma once

#include "Base/Text.h"
#include "Broker/IVorn.h"

#include <span>
#include <string_view>
#include <vector>

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

/// Whether a creation goes no further than a type of which this has become.
inline bool stops(const StoredType& type, ExistingRules rules)
{
    const bool exists = type.code == StoredType::exists || type.code == StoredType::unchanged;
    return exists && rules.ruleFor(type.code == StoredType::unchanged) != VornExisting::keep;
}

/// Where a creation stores types.
class TypeStorage
{
public:
    virtual ~TypeStorage() = default;

    virtual bool keepsSources() const = 0;

    /// Stores types in their order, each by transactions of its own, and returns what became of the first ones, at
    /// least of one: up to one that the rules stop at, or that the next one fails behind. A type is replaced only as it
    /// was found, so nothing that others store meanwhile is lost. Raises CDBException if the first one fails.
    virtual std::vector<StoredType> store(std::span<const NamedDocument> types, const CString& source,
                                          ExistingRules rules) = 0;

    /// Returns when all that was stored is on the server's disk: a crash of the server until then may lose the types
    /// that were stored last. Raises CDBException.
    virtual void finish() {}
};
