#pragma once

#include "Base/Text.h"

#include <cstdint>
#include <span>
#include <vector>

/// Flattens one content model: collects its names in order of first occurrence, and finds those that may occur more
/// than once. A name repeats if it or a group around it has a repeating mark, or if it occurs twice and both can be
/// present. Readers add groups and names in document order. Names are numbers from 0. The memory grows with the
/// largest. One object serves all content models of a source, and reuses its memory.
class ContentModel
{
public:
    /// How the parts of a group combine. They exclude each other only in a choice.
    enum Group : std::uint8_t
    {
        undecided, ///< decided by its first connector; a sequence until then
        sequence,
        anyOrder, ///< all parts, as with "&" in SGML
        choice
    };

    /// A name of a content. `repeats` if a content may hold it more than once.
    struct Entry
    {
        std::uint32_t name;
        bool repeats;

        friend bool operator==(const Entry&, const Entry&) = default;
    };

    /// Starts a new content model. Must be called before the first one, too.
    void clear();

    /// Starts a group inside the current one. The kind of an undecided group is set by decide().
    void beginGroup(Group kind) { open.push_back({position(), kind}); }

    /// Sets the kind of the innermost group, which must be open, at its first connector. Returns the kind before, which
    /// stays if it isn't undecided.
    Group decide(Group kind)
    {
        const Group before = open.back().kind;
        if (before == undecided)
            open.back().kind = kind;
        return before;
    }

    /// Ends the innermost group; `repeats` if the whole group may occur more than once.
    void endGroup(bool repeats);

    /// Adds a name; `repeats` if it may occur more than once by its own mark.
    void add(std::uint32_t name, bool repeats);

    /// Returns the names of the content, each once. Call it after all groups have ended. Valid until the next clear().
    std::span<const Entry> query() const { return entries; }

private:
    // A group that has begun; a stack of these replaces a tree of the content.
    struct OpenGroup
    {
        std::uint32_t start; // number of occurrences before the group
        Group kind;
    };

    // Where a name is in the content with that number.
    struct Place
    {
        std::uint32_t content = 0;
        std::uint32_t entry = 0;
        std::uint32_t last = 0; // position of its last occurrence
    };

    std::uint32_t position() const { return static_cast<std::uint32_t>(occurrences.size()); }
    bool canFollow(std::uint32_t earlier) const;

    std::vector<OpenGroup> open;            // from the outermost to the innermost
    std::vector<std::uint32_t> occurrences; // the entry of each occurrence, of names that don't repeat so far
    std::vector<Entry> entries;             // in order of first occurrence
    std::vector<Place> places;              // by name
    std::uint32_t current = 0;              // number of the content
};
