#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// Which documents of a set name which others, by the numbers of the documents.
class DocumentLinks
{
public:
    using Index = std::uint32_t;

    /// Notes that `document` names `other`.
    void add(Index document, Index other);

    /// Those of `given`, by their positions in it, that no document of another one names, in their order; of documents
    /// that name each other in a circle the first.
    std::vector<std::size_t> findTops(std::span<const Index> given) const;

private:
    std::vector<std::vector<Index>> named; // by document
};
