#include "Import/Json/JsonTree.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

using Index = JsonNode::Index;

constexpr std::size_t kMaxNodes = 8'000'000;
constexpr std::size_t kFreeMerged = 100'000; // members that merges of YAML may visit in any document
constexpr std::size_t kMaxMerged = 20;       // for each value in addition, so that the work is linear in the text
constexpr std::size_t kFewMembers = 16;
constexpr std::size_t kMaxPosition = 10'000; // in an array; pointers don't count further, which keeps them linear

constexpr std::string_view kWords[] = {
#define WORD(name) #name,
#define OTHER_WORD(name, text) text,
    JSON_WORDS(WORD) JSON_OTHER_WORDS(OTHER_WORD)
#undef OTHER_WORD
#undef WORD
};

std::uint64_t memberKey(Index object, NameTable::Id key)
{
    return static_cast<std::uint64_t>(object) << 32 | key;
}

} // namespace

JsonTree::JsonTree() : nodes(1)
{
    for (const std::string_view word : kWords)
        names.intern(word);
}

JsonNode::Index JsonTree::find(Index object, NameTable::Id key) const
{
    object = target(object);
    if (nodes[object].kind != JsonNode::object)
        return 0;
    if (nodes[object].isLarge) {
        const Index* const found = members.find(memberKey(object, key));
        return found ? target(*found) : 0;
    }
    Index at = nodes[object].firstChild;
    while (at != 0 && nodes[at].key != key)
        at = nodes[at].next;
    return target(at);
}

JsonNode::Index JsonTree::find(Index object, std::string_view key) const
{
    const auto known = names.find(key);
    return known ? find(object, *known) : 0;
}

JsonNode::Index JsonTree::find(Index object, JsonWord key, JsonNode::Kind kind) const
{
    const Index found = find(object, key);
    return nodes[found].kind == kind ? found : 0;
}

std::string_view JsonTree::textOf(Index object, JsonWord key) const
{
    return text(find(object, key, JsonNode::string));
}

JsonNode::Index JsonTree::add(JsonNode::Kind kind, Index parent, Index last, JsonWord key, Index place)
{
    const auto made = static_cast<Index>(nodes.size());
    JsonNode node;
    node.kind = kind;
    node.parent = parent;
    node.key = static_cast<NameTable::Id>(key);
    node.document = nodes[place].document;
    node.line = nodes[place].line;
    node.column = nodes[place].column;
    nodes.push_back(node);
    if (last != 0)
        nodes[last].next = made;
    else if (parent != 0)
        nodes[parent].firstChild = made;
    return made;
}

JsonNode::Index JsonTree::addList(JsonWord key, std::span<const Index> members, Index place)
{
    const Index list = add(JsonNode::array, 0, 0, key, place);
    Index last = 0;
    for (const Index member : members) {
        last = add(JsonNode::alias, list, last, JsonWord::none, member);
        nodes[last].firstChild = target(member);
    }
    return list;
}

void JsonTree::index(Index object)
{
    nodes[object].isLarge = true;
    for (const Index at : childrenOf(object))
        members.insert(memberKey(object, nodes[at].key), at);
}

CString JsonTree::pointerTo(Index node) const
{
    std::vector<CString> steps;
    for (; nodes[node].parent != 0; node = nodes[node].parent) {
        const Index parent = nodes[node].parent;
        CString step;
        if (nodes[parent].kind == JsonNode::object) {
            for (const char c : key(node))
                step += c == '~' ? "~0" : c == '/' ? "~1" : CString(1, c);
        } else {
            std::size_t position = 0;
            for (Index at = nodes[parent].firstChild; at != node && at != 0 && position < kMaxPosition;
                 at = nodes[at].next)
                ++position;
            step = std::to_string(position);
        }
        steps.push_back(std::move(step));
    }
    CString pointer = "#";
    for (auto step = steps.rbegin(); step != steps.rend(); ++step)
        pointer += "/" + *step;
    return pointer;
}

JsonNode::Index JsonBuilder::add(JsonNode::Kind kind, std::string_view text, std::uint32_t line, std::uint32_t column)
{
    ++values;
    if (tree.size() > kMaxNodes)
        types.refuse(std::to_string(kMaxNodes) + " values");
    Level* const level = open.empty() ? nullptr : &open.back();
    const bool isMerged = level && std::exchange(isNextMerged, false);
    const bool isMember = level && !isMerged;
    const Index made = tree.add(kind, isMember ? level->node : 0, isMember ? level->last : 0, JsonWord::none, 0);
    JsonNode& node = tree[made];
    node.key = std::exchange(nextKey, 0);
    node.text = text.empty() ? 0 : tree.names.intern(text);
    node.document = document;
    node.line = line;
    node.column = column;
    if (isMember) {
        level->last = made;
        ++level->count;
    } else if (isMerged) {
        node.parent = level->node;
        if (const Index other = std::exchange(level->merged, made); other != 0)
            report.add(SourceReport::keyTwice, tree.placeOf(other), tree.key(other));
    }
    if (first == 0)
        first = made;
    if (kind == JsonNode::object || kind == JsonNode::array)
        open.push_back({made});
    return made;
}

// Adds aliases of the members of a merged mapping, except for keys that the open object has.
void JsonBuilder::merge(Index source)
{
    if (!tree.is(source, JsonNode::object))
        return report.add(SourceReport::invalidValue, tree.placeOf(source), "<<");
    Level& level = open.back();
    std::unordered_set<NameTable::Id> met;
    countMerged(); // a mapping without members has a cost, too
    for (const Index at : tree.childrenOf(level.node)) {
        countMerged();
        met.insert(tree[at].key);
    }
    for (const Index at : tree.childrenOf(source)) {
        countMerged();
        if (met.insert(tree[at].key).second) {
            nextKey = tree[at].key;
            tree[add(JsonNode::alias, {}, tree[at].line, tree[at].column)].firstChild = tree.target(at);
            --values;
        }
    }
}

void JsonBuilder::countMerged()
{
    if (++merged > kFreeMerged + kMaxMerged * values)
        types.refuse(std::to_string(kFreeMerged) + " merged members and " + std::to_string(kMaxMerged) +
                     " more for each value of the document");
}

void JsonBuilder::end()
{
    if (const Index source = tree.target(open.back().merged); tree.is(source, JsonNode::array))
        for (const Index at : tree.childrenOf(source))
            merge(tree.target(at));
    else if (source != 0)
        merge(source);
    const Level level = open.back();
    open.pop_back();
    if (tree[level.node].kind == JsonNode::object && level.count > 1)
        dropDuplicates(level);
}

bool JsonBuilder::isOpen(Index node) const
{
    return std::ranges::find(open, node, &Level::node) != open.end();
}

// Keeps the last of the members with one key, as most parsers do (RFC 8259, 4).
void JsonBuilder::dropDuplicates(const Level& level)
{
    std::vector<Index> all;
    for (const Index at : tree.childrenOf(level.node))
        all.push_back(at);
    metIn.resize(tree.names.size());
    Index next = 0;
    std::size_t kept = 0;
    for (auto at = all.rbegin(); at != all.rend(); ++at) {
        if (std::exchange(metIn[tree[*at].key], level.node) == level.node) {
            report.add(SourceReport::keyTwice, tree.placeOf(*at), tree.key(*at));
            continue;
        }
        tree[*at].next = next;
        next = *at;
        ++kept;
    }
    tree[level.node].firstChild = next;
    if (kept > kFewMembers)
        tree.index(level.node);
}
