#pragma once

#include "Import/Full/RecordOrder.h"

/// Chooses the main element: the one from which the most records can be reached; of equals the first declared. An
/// element whose name is a word of the file's name takes precedence if it reaches at least half as many. Elements
/// without fields, and abstract ones, come last.
class MainElement
{
public:
    using Index = SourceTypes::Index;

    explicit MainElement(const SourceTypes& types);

    /// All that could well be the main element among those that the source of this number declares, as indexes of
    /// `types.candidates`: the chosen one first, then in the order of declaration. Empty if there is none. Sources are
    /// asked for in the order of their numbers, each once.
    std::vector<Index> choose(const CString& fileName, Index source);

private:
    void findSources();
    std::vector<Index> measureAll(std::string_view fileName);
    std::size_t measure(Index record);

    const SourceTypes& types;
    RecordOrder order;           // of all records that candidates reach
    std::vector<Index> bySource; // candidates, those of one source side by side
    std::size_t next = 0;        // among them
    std::vector<Index> ledToBy;  // by component: the walk that led there from another one last
    std::vector<Index> ranked;   // the candidates of the best rank, of the source in hand
    std::vector<Index> sources;  // of these the ones that no other leads to, and those that the file's name names
    std::vector<Index> seen;     // by record: the walk that came by last
    std::vector<Index> waiting;
    Index walks = 0;
    std::size_t stepsLeft = 0;
};
