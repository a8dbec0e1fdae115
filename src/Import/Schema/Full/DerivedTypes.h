#pragma once

#include "Import/Schema/Full/SchemaSet.h"

/// The named complex types derived from others, in all documents read. A message may choose them by xsi:type
/// (https://www.w3.org/TR/xmlschema-1/#xsi_type).
class DerivedTypes
{
public:
    using Index = SchemaNode::Index;

    explicit DerivedTypes(const SchemaSet& set) : set(set) {}

    /// Returns the types derived from `type` directly, in order of declaration.
    const std::vector<Index>& of(Index type);

private:
    void collect();

    const SchemaSet& set;
    bool isCollected = false;
    std::unordered_map<Index, std::vector<Index>> derived; // by base type
};
