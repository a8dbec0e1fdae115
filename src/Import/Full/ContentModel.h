#pragma once

#include "Base/Text.h"

#include <cstdint>
#include <span>
#include <vector>

/// Flattens one content model: which names it holds, in the order in which they first occur, and which of them may
/// occur more than once: by their own mark, by that of a group around them, or twice where both can stand together. The
/// reader hands over groups and names as it meets them; names are numbers from 0, as dense as can be.
class ContentModel
{
public:
    enum Group : std::uint8_t
    {
        undecided, ///< its first connector will tell; till then a sequence
        sequence,  ///< also what may come in any order
        choice
    };

    struct Entry
    {
        std::uint32_t name;
        bool repeats;

        friend bool operator==(const Entry&, const Entry&) = default;
    };

    /// Begins a content model anew.
    void clear();

    void beginGroup(Group kind) { open.push_back({position(), kind}); }

    /// Says what the innermost group is. False if that was not left open.
    bool decide(Group kind)
    {
        if (open.empty() || open.back().kind != undecided)
            return false;
        open.back().kind = kind;
        return true;
    }

    /// Ends the group that was begun last; `repeats` when the whole group may.
    void endGroup(bool repeats);

    void add(std::uint32_t name, bool repeats);

    /// What the content holds, once all groups have been ended. Valid until the next clear().
    std::span<const Entry> finish();

private:
    struct OpenGroup
    {
        std::uint32_t start; // how many names had been met
        Group kind;
    };

    std::uint32_t position() const { return static_cast<std::uint32_t>(met.size()); }
    bool canFollow(std::uint32_t earlier) const;

    std::vector<OpenGroup> open;
    std::vector<std::uint32_t> met;        // the entry that each name met belongs to
    std::vector<std::int32_t> groupsBegin; // by position: how many groups that repeat begin there, less those that end
    std::vector<Entry> entries;
    std::vector<std::uint32_t> entryOf; // by name: its entry + 1, when `stamp` is the current one
    std::vector<std::uint32_t> stamp;
    std::vector<std::uint32_t> last; // by entry: where it was met last
    std::uint32_t current = 0;
};
