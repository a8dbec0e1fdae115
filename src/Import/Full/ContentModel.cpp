#include "Import/Full/ContentModel.h"

#include <algorithm>

// The end of a repeating group doesn't mark its names, because groups can nest as deep as the text is long, and each
// end would visit all names in its group. Instead `groupsBegin` stores where repeating groups begin and end, and
// finish() adds that up in one pass. All steps together are linear in the content, apart from the binary search of
// canFollow().
void ContentModel::clear()
{
    open.clear();
    occurrences.clear();
    groupsBegin.assign(1, 0);
    entries.clear();
    last.clear();
    ++current;
}

void ContentModel::endGroup(bool repeats)
{
    if (repeats) {
        ++groupsBegin[open.back().start];
        --groupsBegin[position()];
    }
    open.pop_back();
}

// A name has one entry in a content, however often it occurs. Stamps mark the entries of the current content, so
// nothing needs to be cleared for the next one.
void ContentModel::add(std::uint32_t name, bool repeats)
{
    if (name >= stamp.size()) {
        stamp.resize(std::max<std::size_t>(name + 1, stamp.size() * 2));
        entryOf.resize(stamp.size());
    }
    if (stamp[name] != current) {
        stamp[name] = current;
        entryOf[name] = static_cast<std::uint32_t>(entries.size());
        entries.push_back({name, repeats});
        last.push_back(position());
    } else {
        Entry& entry = entries[entryOf[name]];
        entry.repeats = entry.repeats || repeats || canFollow(last[entryOf[name]]);
        last[entryOf[name]] = position();
    }
    occurrences.push_back(entryOf[name]);
    groupsBegin.push_back(0);
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

// `around` is the number of repeating groups around the occurrence.
std::span<const ContentModel::Entry> ContentModel::finish()
{
    std::int32_t around = 0;
    for (std::size_t at = 0; at < occurrences.size(); ++at) {
        around += groupsBegin[at];
        if (around > 0)
            entries[occurrences[at]].repeats = true;
    }
    return entries;
}
