// JsonContents: the members of records and enumerations, and the schemas that are made from those of one member.
#include "Import/Json/JsonContents.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

constexpr int kMaxRank = 4; // nesting of made schemas; bounds their growth

// The nodes of made schemas in any source, and in addition for each of its values, so that the work is linear in the
// source. Real schemas have at most 0.3 for each value.
constexpr std::size_t kFreeMade = 50'000;
constexpr std::size_t kMadePerValue = 2;

constexpr JsonWord kMadeKeys[] = {JsonWord::allOf, JsonWord::oneOf, JsonWord::then}; // of made schemas, by How

} // namespace

// Copies borrowed members into the frame, so that others can be added.
void JsonContents::makeOwn(Frame& frame)
{
    frame.content.owner = 0;
    if (!std::exchange(frame.isBorrowed, false))
        return;
    addMembers(frame, frame.content, frame.content.isConditional ? maybe : both);
}

// Adds the members of a record or an enumeration.
void JsonContents::addMembers(Frame& frame, const JsonContent& content, How how)
{
    makeOwn(frame);
    step(content.count);
    for (const JsonMember& member : membersOf(content))
        if (content.kind == JsonContent::record)
            addField(frame, member, how);
        else if (frame.positions.insert(member.name, 0).second)
            frame.members.push_back({member, {}});
}

void JsonContents::addOwnFields(Frame& frame, Index properties)
{
    if (tree[properties].firstChild == 0)
        return;
    if (frame.content.kind == JsonContent::none)
        frame.content.kind = JsonContent::record;
    // Properties make a schema an object, whatever its other parts are.
    if (frame.content.kind != JsonContent::record) {
        documents.note(SourceReport::kindsDiffer, properties);
        take(frame, {.kind = JsonContent::record});
    }
    makeOwn(frame);
    for (const Index at : tree.childrenOf(properties)) {
        step();
        const Index schema = tree.target(at);
        if (isBoolean(schema, "false"))
            documents.note(SourceReport::elementNotAllowed, at, tree.key(at));
        else
            addField(frame, {tree[at].key, schema}, both);
    }
}

// Returns an enumeration of the listed values if they are texts; null is left out. With `isText`, numbers and booleans
// count as texts, too.
JsonContent JsonContents::contentOfValues(Frame& frame, const Own& own, bool isText)
{
    JsonContent content;
    content.owner = frame.node;
    content.first = static_cast<std::uint32_t>(members.size());
    // A schema that lists one value describes it, but a property's describes the field.
    const bool isOfValue = own.values.size() == 1 && tree.keyOf(tree[frame.node].parent) != JsonWord::properties;
    constexpr unsigned texts = 1, numbers = 2, others = 4;
    unsigned sorts = 0; // a set of these bits
    std::unordered_set<NameTable::Id> visited;
    for (const Index value : own.values) {
        const JsonNode::Kind kind = tree[value].kind;
        if (kind == JsonNode::null)
            continue;
        const bool isScalar = kind == JsonNode::number || kind == JsonNode::boolean;
        const bool isConstant = kind == JsonNode::string || (isText && isScalar);
        sorts |= isConstant ? texts : kind == JsonNode::number ? numbers : others;
        if (visited.insert(tree[value].text).second)
            members.push_back({tree[value].text, isOfValue ? frame.node : 0});
    }
    step(own.values.size());
    if (sorts == texts) {
        content.kind = JsonContent::enumeration;
        content.count = static_cast<std::uint32_t>(members.size() - content.first);
        return content;
    }
    members.resize(content.first);
    if (sorts != 0)
        content.kind = sorts == numbers ? JsonContent::number : JsonContent::text;
    if ((sorts & (sorts - 1)) != 0) // several
        documents.note(SourceReport::kindsDiffer, frame.node);
    return content;
}

// Adds a field, or a further schema to the field of the same name.
void JsonContents::addField(Frame& frame, JsonMember field, How how)
{
    const auto [at, isNew] = frame.positions.insert(field.name, static_cast<std::uint32_t>(frame.members.size()));
    if (!isNew)
        return mergeField(frame.members[at], field, how);
    field.isConditional = field.isConditional || how == maybe;
    frame.members.push_back({field, {}, field.isConditional ? 0u : 1u});
}

// Adds a further schema to a field. Schemas that apply under conditions are alternatives, and follow one that always
// applies.
void JsonContents::mergeField(MergedMember& known, JsonMember field, How how)
{
    const bool isConditional = field.isConditional || how == maybe;
    bool isSame = known.schema == field.schema;
    // Merging leaves of the same type and format would cost more, and chains of schemas that give one field ever other
    // bounds would need a merged schema for each step.
    if (const auto leaf = isSame ? std::nullopt : leafOf(known.schema); leaf && leaf == leafOf(field.schema)) {
        isSame = true;
        dropped.insert(field.schema);
    }
    if (how == either) {
        known.alternatives += isConditional ? 0 : 1;
    } else if (known.isConditional && !isConditional) {
        known.isConditional = false;
        for (Part& part : known.more)
            part.how = maybe;
        if (!isSame)
            known.more.insert(known.more.begin(), {std::exchange(known.schema, field.schema), maybe});
        return;
    } else if (isConditional) {
        how = known.isConditional ? either : maybe;
    }
    if (!isSame)
        known.more.push_back({field.schema, how});
}

// Replaces the discriminator property by an enumeration of the mapping's keys.
void JsonContents::overrideDiscriminator(Frame& frame)
{
    makeOwn(frame);
    const Index schema = tree.add({.kind = JsonNode::object, .place = tree[frame.mapping].place});
    JsonContent listed{.owner = schema, .first = static_cast<std::uint32_t>(members.size())};
    for (const Index at : tree.childrenOf(frame.mapping)) {
        members.push_back({tree[at].key});
        checkMapped(at);
    }
    listed.count = static_cast<std::uint32_t>(members.size()) - listed.first;
    listed.kind = listed.count > 0 ? JsonContent::enumeration : JsonContent::none;
    contents[schema] = listed;
    const JsonMember field{frame.discriminator, schema};
    addField(frame, field, both);
    frame.members[*frame.positions.find(field.name)] = {field, {}};
}

// Reports a value of a mapping that leads nowhere. It is the name of a schema, in any document of the set, or a
// reference.
void JsonContents::checkMapped(Index value)
{
    const std::string_view name = tree.text(tree.target(value));
    const bool isName = documents.hasDefinition(name);
    if (!tree.is(tree.target(value), JsonNode::string))
        documents.note(SourceReport::invalidValue, value, tree.key(value));
    else if (!isName && name.find_first_of("#/.") == name.npos)
        documents.note(SourceReport::unresolvedReference, value, name);
    else if (!isName)
        documents.resolve(value);
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
