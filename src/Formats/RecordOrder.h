#pragma once

#include "Formats/SourceTypes.h"

/// Puts records in order, components before what uses them, and finds those that hold each other (strongly connected
/// components: R. Tarjan, Depth-first search and linear graph algorithms, 1972). Walks without recursion, in time
/// linear in the fields.
class RecordOrder
{
public:
    using Index = SourceTypes::Index;

    explicit RecordOrder(const SourceTypes& types);

    /// Adds `start` and all records that it reaches, as far as they aren't there yet.
    void visit(Index start);

    /// The records visited so far. Only where records hold each other does one come before a component of its own.
    const std::vector<Index>& query() const { return order; }

    /// The same number for two records that hold each other; kNone for one that wasn't visited.
    Index componentOf(Index record) const { return component[record]; }
    Index componentCount() const { return components; }

private:
    struct Step
    {
        Index record;
        Index nextField;
    };

    void enter(Index record);
    void leave(Index record);

    const SourceTypes& types;
    std::vector<Index> order;
    std::vector<Index> component;
    std::vector<Index> number;  // in the order of the first visit, from 1; 0: not visited
    std::vector<Index> lowest;  // the lowest number that is reached and has no component yet
    std::vector<Index> pending; // visited, without a component yet
    std::vector<Step> steps;
    Index lastNumber = 0;
    Index components = 0;
};
