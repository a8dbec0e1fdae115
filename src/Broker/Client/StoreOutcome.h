#pragma once

#include "Base/Text.h"
#include "Broker/IVorn.h"

#include <span>
#include <string_view>
#include <vector>

/// A type to store, by its full name. The document is a view, which must be valid until the call that takes it returns.
struct NamedDocument
{
    CString name;
    std::string_view document;
};

/// The source of types and the time of their creation.
struct SourceMark
{
    CString source; ///< empty if unknown
    CString time;   ///< in UTC, "2026-01-31T23:59:59Z"
};

/// The outcome for one type.
struct StoreOutcome
{
    using Code = VornOutcome::Code;
    using enum VornOutcome::Code;

    Code code = created;
    SourceMark mark = {}; ///< of the type that existed before
};

/// What to do with existing types.
struct ExistingRules
{
    VornExisting changed;   ///< with another document
    VornExisting unchanged; ///< with the same one

    /// Returns the rule for a type whose document is the same or another.
    VornExisting ruleFor(bool isSame) const { return isSame ? unchanged : changed; }
};

/// Returns whether a creation stops at a type with this outcome.
inline bool stops(const StoreOutcome& type, ExistingRules rules)
{
    const bool exists = type.code == StoreOutcome::exists || type.code == StoreOutcome::unchanged;
    return exists && rules.ruleFor(type.code == StoreOutcome::unchanged) != VornExisting::keep;
}

/// The storage of a creation. TypeStore changes the repository, TypeReader only returns what a creation would do.
class TypeStorage
{
public:
    virtual ~TypeStorage() = default;

    /// Returns whether the sources of types are stored.
    virtual bool keepsSources() const = 0;

    /// Stores types in order, each in transactions of its own. Returns the outcomes of the first ones, at least one: up
    /// to a type where the rules stop, or before a type that fails. Replaces a type only if it is still as found, so no
    /// concurrent change is lost. Throws CDBException if the first type fails.
    virtual std::vector<StoreOutcome> store(std::span<const NamedDocument> types, const CString& source,
                                            ExistingRules rules) = 0;

    /// Waits until everything stored is on the server's disk; before that, a crash of the server may lose the last
    /// types. Throws CDBException.
    virtual void finish() {}
};
