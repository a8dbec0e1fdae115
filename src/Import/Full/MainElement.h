#pragma once

#include "Import/Full/RecordOrder.h"

/// Chooses the main element: the one from which the most records can be reached; of equal ones, the first declared. An
/// element whose name is a word of the file's name takes precedence if it reaches at least half as many. Elements
/// without fields, and abstract ones, come last.
///
/// In 18 real DTDs, the first declared element is the main one 12 times, and the one chosen by this rule 16 times.
class MainElement
{
public:
    using Index = SourceTypes::Index;

    /// `types` must be complete, and must not change while this lives.
    explicit MainElement(const SourceTypes& types);

    /// Returns the possible main elements among those that source number `source` declares, as indices of
    /// `types.candidates`: the chosen one first, then in order of declaration. Empty if there are none. Call it once
    /// for each source, in order.
    std::vector<Index> choose(const CString& fileName, Index source);

private:
    Index firstLeaf(std::size_t first) const;
    void findSources();
    std::vector<Index> measureAll(std::string_view fileName);
    std::size_t measure(Index record);

    const SourceTypes& types;
    RecordOrder order;               // the records that candidates reach; grows with each source
    std::vector<Index> bySource;     // candidates by source
    std::size_t next = 0;            // index in `bySource`
    std::vector<Index> lastWalkInto; // by component: the last walk that led there from another component
    std::vector<Index> ranked;       // the current source's candidates that are not abstract and have fields
    std::vector<Index> sources;      // those of `ranked` to measure, one for each component that no other one refers to
    std::vector<Index> seen;         // by record: the last walk that passed it
    std::vector<Index> waiting;      // records to visit
    Index walks = 0;                 // number of the current walk; stamps in `seen` and `lastWalkInto` need no clearing
    std::size_t stepsLeft = 0;       // budget of the current source, in references
};
