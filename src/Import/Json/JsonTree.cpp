#include "Import/Json/JsonTree.h"

#include <algorithm>
#include <utility>

namespace {

using Index = JsonNode::Index;

constexpr std::size_t kMaxPosition = 10'000; // in an array; pointers don't count further, which keeps them linear

constexpr std::string_view kWords[] = {
#define WORD(name) #name,
#define OTHER_WORD(name, text) text,
    JSON_WORDS(WORD) JSON_OTHER_WORDS(OTHER_WORD)
#undef OTHER_WORD
#undef WORD
};

} // namespace

JsonTree::JsonTree() : nodes(1)
{
    for (const std::string_view word : kWords)
        names.intern(word);
}

// A few members are searched linearly. Many are hashed, because looking up each of thousands of definitions would take
// quadratic time.
JsonNode::Index JsonTree::find(Index object, NameTable::Id key) const
{
    object = target(object);
    if (nodes[object].kind != JsonNode::object)
        return 0;
    if (nodes[object].isLarge) {
        const Index* const found = members.find(joined(object, key));
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

// Aliases are used because the members keep their parents, which places and pointers depend on.
JsonNode::Index JsonTree::addList(JsonWord key, std::span<const Index> members, SourcePlace place)
{
    const Index list = add({.kind = JsonNode::array, .key = static_cast<NameTable::Id>(key), .place = place});
    Index last = 0;
    for (const Index member : members) {
        const Index alias =
            add({.kind = JsonNode::alias, .parent = list, .firstChild = target(member), .place = nodes[member].place});
        (last == 0 ? nodes[list].firstChild : nodes[last].next) = alias;
        last = alias;
    }
    return list;
}

// The key of the table joins object and name, so that one table serves all objects.
void JsonTree::index(Index object)
{
    nodes[object].isLarge = true;
    for (const Index at : childrenOf(object))
        members.insert(joined(object, nodes[at].key), at);
}

// Walks up, so the steps come in reverse. A report could have as many pointers as the tree has nodes, so JsonDocuments
// bounds their number, and kMaxPosition the cost of each array.
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
