#pragma once

#include "Import/Full/SourceTypes.h"

/// Returns the local part of "name", "prefix:name" or "{URI}name".
std::string_view localNameOf(std::string_view root);

/// Finds candidates by the names that users call them by. The types must not change meanwhile.
class RootNames
{
public:
    explicit RootNames(const SourceTypes& types);

    /// The candidate that `root` names: "name", "{URI}name", or "prefix:name" with a prefix that a source declares. An
    /// element goes before a type, one of the sources' own before one of a document that they name, and a message's
    /// before others. Throws
    /// SourceRefusal where there is none, and with their full names where there are several.
    SourceTypes::Index find(std::string_view root) const;

private:
    using Index = SourceTypes::Index;

    std::vector<Index> allCalled(std::string_view name) const;

    const SourceTypes& types;
    std::vector<Index> byName; // candidates, those of one name in the order of declaration
};
