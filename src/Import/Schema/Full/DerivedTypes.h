#pragma once

#include "Import/Schema/Full/SchemaSet.h"

/// The named complex types that are derived from others, in all documents that were read: what a message may choose by
/// xsi:type (https://www.w3.org/TR/xmlschema-1/#xsi_type).
class DerivedTypes
{
public:
    using Index = SchemaNode::Index;

    explicit DerivedTypes(const SchemaSet& set) : set(set) {}

    /// Those that are derived from `type` directly, in the order of declaration.
    const std::vector<Index>& of(Index type);

private:
    void collect();

    const SchemaSet& set;
    bool isCollected = false;
    std::unordered_map<Index, std::vector<Index>> derived; // by base
};
