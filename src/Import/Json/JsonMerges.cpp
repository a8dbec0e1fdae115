// JsonContents: schemas that are made of others, because several describe one value.
#include "Import/Json/JsonContents.h"
#include "Import/Json/JsonKind.h"

#include <algorithm>
#include <unordered_set>

namespace {

using Index = JsonNode::Index;

constexpr int kLongestChain = 100; // of references; guards against cycles
constexpr int kMaxRank = 4;        // nesting of made schemas; bounds their growth

// The nodes of made schemas in any source, and in addition for each of its values, so that the work is linear in the
// source. Real schemas have at most 0.3 for each value.
constexpr std::size_t kFreeMade = 50'000;
constexpr std::size_t kMadePerValue = 2;

constexpr JsonWord kMadeKeys[] = {JsonWord::allOf, JsonWord::oneOf, JsonWord::then}; // of made schemas, by How

} // namespace

// Returns the schema that a reference leads to; 0 and a loss if it leads to none, or to one in another language. The
// members of "properties" are schemas, but "properties" itself is not, unless a document that is not a schema uses this
// key for one.
JsonNode::Index JsonContents::referenced(Index child)
{
    const NameTable::Id reference = tree[tree.target(child)].text;
    const Index target = documents.resolve(child, reference);
    // AsyncAPI 3 has schemas beside their format.
    if (const std::string_view format = tree.textOf(target, JsonWord::schemaFormat); !format.empty()) {
        const Index schema = tree.find(target, JsonWord::schema);
        if (schema != 0 && languageOf(lowerAscii(format)) == SchemaLanguage::jsonSchema)
            return schema;
        if (schema != 0) {
            documents.note(SourceReport::typeUnknown, child, CString(tree.names[reference]) + " in " + CString(format));
            return 0;
        }
    }
    if (isAvroType(tree.textOf(target, JsonWord::type))) {
        documents.note(SourceReport::typeUnknown, child, CString(tree.names[reference]) + " in Avro");
        return 0;
    }
    if (tree[target].role != JsonNode::names || tree.find(target, JsonWord::type, JsonNode::string) != 0)
        return target;
    documents.note(SourceReport::unresolvedReference, child, tree.names[reference]);
    return 0;
}

JsonNode::Index JsonContents::baseOf(Index schema)
{
    for (int i = 0; i < kLongestChain; ++i) {
        schema = tree.target(schema);
        const Index reference = tree.find(schema, JsonWord::ref, JsonNode::string);
        if (reference == 0)
            break;
        bool isPlain = !tree[schema].isLarge;
        if (!documents.ignoresSiblings(schema))
            for (Index at = isPlain ? tree[schema].firstChild : 0; at != 0; at = tree[at].next)
                isPlain = isPlain &&
                          isOneOf(tree.keyOf(at),
                                  {JsonWord::none, JsonWord::ref, JsonWord::title, JsonWord::description,
                                   JsonWord::example, JsonWord::examples, JsonWord::defaultWord, JsonWord::nullable});
        const Index target = isPlain ? referenced(reference) : 0;
        if (target == 0)
            break;
        schema = target;
    }
    return schema;
}

// Returns one schema that combines all. Each run of alternatives, and each run of schemas that apply together, becomes
// one schema.
JsonNode::Index JsonContents::mergedOf(Index schema, std::span<const Part> more)
{
    for (std::size_t i = 0; i < more.size();) {
        const How how = more[i].how;
        std::vector<Index> members;
        std::unordered_set<Index> visited;
        int rank = 0;
        const auto add = [&](Index member) {
            if (visited.insert(member).second)
                members.push_back(member);
        };
        const auto addOrSplit = [&](Index member) {
            member = baseOf(member);
            const auto known = ranks.find(member);
            const bool isAlike = known != ranks.end() && tree.keyOf(member) == kMadeKeys[how];
            if (known != ranks.end())
                rank = std::max(rank, known->second + (isAlike ? 0 : 1));
            if (!isAlike)
                return add(member);
            // Its members are added instead of itself, so that merging again leads to the same schema.
            for (const Index inner : tree.childrenOf(member))
                add(tree.target(inner));
        };
        addOrSplit(schema);
        for (; i < more.size() && more[i].how == how; ++i)
            addOrSplit(more[i].node);
        step(members.size());
        if (rank > kMaxRank)
            documents.note(SourceReport::kindsDiffer, members.front());
        schema = rank > kMaxRank || members.size() == 1 ? members.front() : makeMerged(how, members, rank);
    }
    return schema;
}

JsonNode::Index JsonContents::makeMerged(How how, const std::vector<Index>& members, int rank)
{
    std::vector<Index> key = members;
    // The order of members doesn't matter, except that the first one of a condition applies in any case.
    std::ranges::sort(how == maybe ? std::span(key).subspan(1) : std::span(key));
    const auto [known, isNew] = merges.try_emplace({how, std::move(key)}, 0);
    if (!isNew)
        return known->second;
    if (made > kFreeMade + kMadePerValue * (tree.size() - made))
        types.refuse(std::to_string(kFreeMade) + " combinations of schemas and " + std::to_string(kMadePerValue) +
                     " more for each value of the source");
    made += members.size() + 1;
    known->second = tree.addList(kMadeKeys[how], members, tree[members.front()].place);
    ranks.emplace(known->second, rank);
    return known->second;
}

// Returns the type and the format of a schema that is a leaf; nothing for other schemas.
std::optional<std::pair<NameTable::Id, NameTable::Id>> JsonContents::leafOf(Index schema) const
{
    if (tree[schema].isLarge)
        return std::nullopt;
    NameTable::Id type = 0, format = 0;
    for (const Index at : tree.childrenOf(schema)) {
        const JsonWord key = tree.keyOf(at);
        if (key == JsonWord::type && tree.is(at, JsonNode::string))
            type = tree[at].text;
        else if (key == JsonWord::format && tree.is(at, JsonNode::string))
            format = tree[at].text;
        else if (!isOneOf(key, {JsonWord::title, JsonWord::description, JsonWord::none}) && !detailOf(key))
            return std::nullopt;
    }
    const bool isLeaf =
        isOneOf(tree.wordOf(type), {JsonWord::string, JsonWord::number, JsonWord::integer, JsonWord::boolean});
    return isLeaf ? std::optional(std::pair(type, format)) : std::nullopt;
}
