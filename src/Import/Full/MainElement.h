#pragma once

#include "Import/Full/RecordOrder.h"

/// Chooses the element that messages start with: the one from which the most records can be reached; of equals the
/// first that is declared. One whose name is a word of the file's name goes before when it reaches at least half as
/// many. Elements without fields, and abstract ones, come last.
class MainElement
{
public:
    using Index = SourceTypes::Index;

    /// Chooses among the elements that the source of this number declares.
    MainElement(const SourceTypes& types, const CString& fileName, Index source);

    /// The main element as an index of `types.candidates`; kNone when there is none.
    Index query() const { return all.empty() ? SourceTypes::kNone : all.front(); }

    /// All that could well be it, the chosen one first, then in the order of declaration.
    const std::vector<Index>& queryAll() const { return all; }

private:
    void findSources();
    void measureAll(std::string_view fileName);
    std::size_t measure(Index record);

    const SourceTypes& types;
    std::vector<Index> ranked;  // the candidates of the best rank
    std::vector<Index> sources; // of these the ones that no other leads to, and those that the file's name names
    std::vector<Index> all;
    std::vector<Index> seen; // by record: the measuring that came by last
    std::vector<Index> waiting;
    Index measurings = 0;
    std::size_t stepsLeft = 0;
};
