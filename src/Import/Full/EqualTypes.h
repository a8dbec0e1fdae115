#pragma once

#include "Import/Full/SourceTypes.h"

/// The types of a source that have the same name and the same content all the way down, also where they hold each
/// other: names, descriptions, fields and their order, and the types of these. Takes time linear in the fields times
/// the logarithm of the records' number.
struct EqualTypes
{
    using Index = SourceTypes::Index;

    explicit EqualTypes(const SourceTypes& types);

    std::vector<Index> records;      ///< for each the first one that is equal to it, which may be itself
    std::vector<Index> enumerations; ///< the same
};

/// Makes one of the types that are equal and lie in several namespaces, the first of them, in the folder `common`.
/// `records`, indexes of some, become those of what is left.
void mergeEqualTypes(SourceTypes& types, std::vector<SourceTypes::Index>& records);
