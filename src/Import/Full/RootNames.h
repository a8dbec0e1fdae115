#pragma once

#include "Import/Full/SourceTypes.h"

/// Returns the local part of "name", "prefix:name" or "{URI}name". The result is a view of `root`.
std::string_view localNameOf(std::string_view root);

/// Returns the names of candidates that RootNames::find() takes: "{URI}name" if several namespaces have the name. One
/// name for each candidate, in their order.
std::vector<CString> rootNamesOf(const SourceTypes& types, const std::vector<SourceTypes::Index>& candidates);

/// Finds candidates for main types by name. The types must not change while this lives.
class RootNames
{
public:
    /// Sorts the candidates once. `types` must outlive this object.
    explicit RootNames(const SourceTypes& types);

    /// Returns the candidate with the name `root`: "name", "{URI}name", "prefix:name" with a prefix that a source
    /// declares, or "namespace.name" as in Avro. An element takes precedence over a type, one of the sources over one
    /// of a document that they refer to, and one of a message over all others. Throws SourceRefusal if there is none,
    /// or several; the message then lists their full names.
    SourceTypes::Index find(std::string_view root) const;

private:
    using Index = SourceTypes::Index;

    std::vector<Index> allCalled(std::string_view name) const;

    const SourceTypes& types;
    std::vector<Index> byName; // candidates by name, then in order of declaration
};
