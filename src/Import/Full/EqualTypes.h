#pragma once

#include "Import/Full/SourceTypes.h"

/// Finds the equal types of a source: those with the same name, description and fields in the same order, whose fields
/// have equal types in turn, cycles included. Takes at most O(log² n) time for each field, with n records.
struct EqualTypes
{
    using Index = SourceTypes::Index;

    /// Reads `types` and keeps no reference to it. Throws Cancelled.
    explicit EqualTypes(const SourceTypes& types);

    std::vector<Index> enumerations; ///< for each enumeration the first one equal to it, possibly itself
    std::vector<Index> records;      ///< the same
};

/// Merges equal types of several namespaces into one, in the folder `common`. `records` are indices of records and are
/// updated; other indices that the caller has are invalid afterwards. Equal types in a single namespace stay separate.
void mergeEqualTypes(SourceTypes& types, std::vector<SourceTypes::Index>& records);
