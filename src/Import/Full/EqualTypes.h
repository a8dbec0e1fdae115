#pragma once

#include "Import/Full/SourceTypes.h"

/// Finds the equal types of a source: those with the same name, description and fields in the same order, whose fields
/// have equal types in turn, cycles included. Takes time linear in the fields times the logarithm of the number of
/// records.
struct EqualTypes
{
    using Index = SourceTypes::Index;

    explicit EqualTypes(const SourceTypes& types);

    std::vector<Index> records;      ///< for each record the first one equal to it, possibly itself
    std::vector<Index> enumerations; ///< the same
};

/// Merges equal types of several namespaces into one, in the folder `common`. `records` are indices of records and are
/// updated.
void mergeEqualTypes(SourceTypes& types, std::vector<SourceTypes::Index>& records);
