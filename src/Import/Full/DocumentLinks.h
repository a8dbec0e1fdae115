#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// The references between the documents of a set. Documents are numbers. A document that another one refers to is read
/// as part of that one, so only the others, the tops, are sources of their own.
class DocumentLinks
{
public:
    using Index = std::uint32_t;

    /// Records that `document` refers to `other`. A reference to itself is ignored. `other` need not be a given
    /// document.
    void add(Index document, Index other);

    /// Returns the positions in `given`, in order, of the documents that no document outside of their own cycle refers
    /// to. Of the documents in a cycle, only the first one is returned. References through documents that are not given
    /// count, too.
    std::vector<std::size_t> findTops(std::span<const Index> given) const;

    /// The links as a graph, see StrongComponents: the number of a document's links, and the document at the end of
    /// one.
    std::size_t degree(Index document) const { return document < named.size() ? named[document].size() : 0; }
    Index target(Index document, std::size_t link) const { return named[document][link]; }

private:
    std::vector<std::vector<Index>> named; // targets of references, by document; shorter if the last ones have none
};
