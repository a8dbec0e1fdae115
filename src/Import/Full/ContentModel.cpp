#include "Import/Full/ContentModel.h"

#include <algorithm>
#include <utility>

// A name that repeats needs no further look, so `occurrences` only holds those of the other names. The end of a
// repeating group marks the names in it and removes their occurrences. Each one is removed once, however deep groups
// nest, so all steps together are linear in the content, apart from the binary search of canFollow().
void ContentModel::clear()
{
    open.clear();
    occurrences.clear();
    entries.clear();
    ++current;
}

void ContentModel::endGroup(bool repeats)
{
    for (; repeats && position() > open.back().start; occurrences.pop_back())
        entries[occurrences.back()].repeats = true;
    open.pop_back();
}

// A name has one entry in a content, however often it occurs. The number of the content marks the places of its names,
// so nothing needs to be cleared for the next one.
void ContentModel::add(std::uint32_t name, bool repeats)
{
    if (name >= places.size())
        places.resize(std::max<std::size_t>(name + 1, places.size() * 2));
    Place& place = places[name];
    const bool isNew = std::exchange(place.content, current) != current;
    if (isNew) {
        place.entry = static_cast<std::uint32_t>(entries.size());
        entries.push_back({name, false});
    }
    bool& known = entries[place.entry].repeats;
    known = known || repeats || (!isNew && canFollow(place.last));
    if (!known) {
        place.last = position();
        occurrences.push_back(place.entry);
    }
}

// Returns whether an earlier name and the current one can occur together: the innermost open group around both decides,
// and only a choice excludes it. Comparing neighbouring occurrences is sufficient, because the innermost group of two
// distant ones is that of a pair of neighbours between them.
bool ContentModel::canFollow(std::uint32_t earlier) const
{
    const auto behind = std::partition_point(open.begin(), open.end(),
                                             [earlier](const OpenGroup& group) { return group.start <= earlier; });
    return behind == open.begin() || std::prev(behind)->kind != choice;
}
