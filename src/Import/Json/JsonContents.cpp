#include "Import/Json/JsonContents.h"

#include "Base/Progress.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

// See the comment of JsonContents. joinBoth() and joinEither() implement the rules for each pair of kinds.
namespace {

using Index = JsonNode::Index;
using Kind = JsonContent::Kind;

constexpr std::size_t kMaxKept = 4'000'000;   // of members
constexpr std::size_t kMaxSteps = 20'000'000; // bounds schemas that combine many others
constexpr int kMaxRank = 4;                   // nesting of made schemas; bounds their growth

// The nodes of made schemas in any source, and in addition for each of its values, so that the work is linear in the
// source. Real schemas have at most 0.3 for each value.
constexpr std::size_t kFreeMade = 50'000;
constexpr std::size_t kMadePerValue = 2;

constexpr JsonWord kMadeKeys[] = {JsonWord::allOf, JsonWord::oneOf, JsonWord::then}; // of made schemas, by How

bool isObject(Kind kind)
{
    return kind == JsonContent::record || kind == JsonContent::map;
}

bool isRefinedText(Kind kind)
{
    return kind == JsonContent::enumeration || kind == JsonContent::time;
}

// Returns whether an enumeration lists all constants of another.
bool includes(std::span<const JsonMember> all, std::span<const JsonMember> some)
{
    std::unordered_set<NameTable::Id> values;
    for (const JsonMember& constant : all)
        values.insert(constant.name);
    return std::ranges::all_of(some, [&](const JsonMember& constant) { return values.contains(constant.name); });
}

} // namespace

void JsonContents::step(std::size_t count)
{
    steps += count;
    if (steps > kMaxSteps)
        types.refuse(std::to_string(kMaxSteps) + " parts of schemas");
    if (members.size() > kMaxKept)
        types.refuse(std::to_string(kMaxKept) + " fields in parts of schemas");
}

// Works out the parts of a schema before the schema itself, with a stack of frames instead of recursion, because
// schemas may nest without bound.
JsonContent JsonContents::of(Index schema)
{
    cancelPoint.pass();
    schema = tree.target(schema);
    if (const auto known = contents.find(schema); known != contents.end())
        return *known->second;
    enter(schema);
    while (!frames.empty()) {
        cancelPoint.pass();
        Frame& frame = frames.back();
        if (frame.next == frame.parts.size()) {
            finish();
            continue;
        }
        const Part part = frame.parts[frame.next];
        const Index node = tree.target(part.node);
        if (part.how == own) {
            ++frame.next;
            addOwnFields(frame, node);
        } else if (const auto done = contents.find(node); done != contents.end() && done->second) {
            ++frame.next;
            join(frame, *done->second, part.how, node);
        } else {
            enter(node);
        }
    }
    return *contents.at(schema);
}

void JsonContents::readDropped()
{
    for (const Index schema : dropped)
        of(schema);
}

void JsonContents::enter(Index schema)
{
    step();
    if (!contents.try_emplace(schema).second) {
        const SourcePlace place = tree[schema].place;
        const CString words = tree.pointerTo(schema) + " refers to itself without an object in between";
        throw SourceRefusal{words + ".", {report.fileNameOf(place.file), words, place.line, place.column}};
    }
    Frame& frame = frames.emplace_back();
    frame.node = schema;
    const JsonWord key = tree.keyOf(schema);
    if (tree.is(schema, JsonNode::array) &&
        (documents.isMade(schema) || isOneOf(key, {JsonWord::oneOf, JsonWord::anyOf}))) {
        const How how = key == JsonWord::allOf ? both : key == JsonWord::then ? maybe : either;
        for (const Index at : tree.childrenOf(schema))
            frame.parts.push_back({at, how});
        if (how == maybe)
            frame.parts.front().how = both; // it applies in any case
    } else if (tree.is(schema, JsonNode::object)) {
        readSchema(frame);
    } else if (!tree.is(schema, JsonNode::boolean)) {
        documents.note(SourceReport::invalidValue, schema, tree.text(schema));
    }
}

// Stores the content of the last frame. If a single other schema provides all of the content, that schema's type is
// used, unless this schema has a name of its own.
void JsonContents::finish()
{
    Frame& frame = frames.back();
    if (frame.mapping != 0 && frame.content.kind == JsonContent::record)
        overrideDiscriminator(frame);
    if (frame.objects > 1 && !frame.isBorrowed)
        for (MergedMember& field : frame.members)
            field.isConditional = field.isConditional || field.alternatives < frame.objects;
    mergeItems(frame);
    JsonContent content = frame.content;
    if (!frame.isBorrowed && (content.kind == JsonContent::record || content.kind == JsonContent::enumeration)) {
        content.first = static_cast<std::uint32_t>(members.size());
        content.count = static_cast<std::uint32_t>(frame.members.size());
        for (const MergedMember& member : frame.members)
            members.push_back({member.name, mergedOf(member.schema, member.more), member.isConditional});
    }
    const bool isOthers = content.owner != 0 && (frame.isReference || !documents.isDeclared(frame.node));
    if (!isOthers)
        content.owner = frame.node;
    content.isConditional = content.isConditional || frame.allowsAny;
    contents[frame.node] = content;
    frames.pop_back();
}

// Replaces the discriminator property by an enumeration of the mapping's keys.
void JsonContents::overrideDiscriminator(Frame& frame)
{
    makeOwn(frame);
    const Index schema = tree.add({.kind = JsonNode::object, .place = tree[frame.mapping].place});
    JsonContent listed{.owner = schema, .first = static_cast<std::uint32_t>(members.size())};
    for (const Index at : tree.childrenOf(frame.mapping))
        members.push_back({tree[at].key});
    listed.count = static_cast<std::uint32_t>(members.size()) - listed.first;
    listed.kind = listed.count > 0 ? JsonContent::enumeration : JsonContent::none;
    contents[schema] = listed;
    const JsonMember field{frame.discriminator, schema};
    addField(frame, field, both);
    frame.members[*frame.positions.find(field.name)] = {field, {}};
}

void JsonContents::join(Frame& frame, const JsonContent& added, How how, Index part)
{
    // The same object again changes nothing.
    if (frame.isBorrowed && isObject(added.kind) && added.owner == frame.content.owner && !frame.content.isConditional)
        return;
    frame.objects += how == either && isObject(added.kind) ? 1 : 0;
    const Kind kind = frame.content.kind;
    if (added.kind == JsonContent::none) {
        // A schema that allows null only narrows nothing.
        const bool isNull = tree.hasAny(part, {JsonWord::type, JsonWord::constWord, JsonWord::enumWord});
        frame.allowsAny = frame.allowsAny || (how == either && !isNull);
        return;
    }
    if (how == both && added.isConditional)
        how = maybe;
    if (kind == JsonContent::none || (isEmpty(frame) && isObject(added.kind) && how == maybe)) {
        take(frame, added);
        frame.content.isConditional = frame.content.isConditional || how == maybe;
    } else if (how == either) {
        joinEither(frame, added, part);
    } else if (how == both && frame.content.isConditional && frame.isBorrowed && kind != JsonContent::record) {
        mergeItems(frame);
        const JsonContent condition = frame.content;
        take(frame, added);
        joinBoth(frame, condition, maybe, part);
    } else {
        const bool isConditional = frame.content.isConditional && how == maybe;
        joinBoth(frame, added, how, part);
        frame.content.isConditional = isConditional;
    }
}

// Borrows the content of a part. Its members are copied only when others are added, see makeOwn().
void JsonContents::take(Frame& frame, const JsonContent& added)
{
    frame.content = added;
    frame.isBorrowed = true;
    frame.members.clear();
    frame.positions = {};
    frame.items.clear();
}

void JsonContents::mergeItems(Frame& frame)
{
    frame.content.items = mergedOf(frame.content.items, std::exchange(frame.items, {}));
}

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

// Combines two contents that both apply, the second one under a condition with `maybe`. Fields of records add up, text
// is narrowed by an enumeration or a time, and items are merged. If the kinds conflict, objects take precedence over
// other kinds and records over maps; of other kinds the later one is used.
void JsonContents::joinBoth(Frame& frame, const JsonContent& added, How how, Index part)
{
    const Kind kind = frame.content.kind;
    const bool addsNothing = added.kind == JsonContent::record && added.count == 0;
    if (isObject(kind) && addsNothing)
        return;
    if (isEmpty(frame) && isObject(added.kind))
        return take(frame, added);
    if (kind == JsonContent::record && added.kind == JsonContent::record)
        return addMembers(frame, added, how);
    // Conditions exclude each other, as "then" and "else" do.
    if (how == maybe && frame.content.isConditional)
        return joinEither(frame, added, part);
    const bool isRepeated = kind == added.kind && (kind == JsonContent::map || kind == JsonContent::array);
    if (how == maybe && !isRepeated && !(kind == JsonContent::map && added.kind == JsonContent::record))
        return;
    if (kind == JsonContent::text && isRefinedText(added.kind))
        return take(frame, added);
    if (added.kind == JsonContent::text && isRefinedText(kind))
        return;
    if (isRepeated) {
        // Items alone don't exclude other kinds.
        if (how == both) {
            if (frame.content.isImplied)
                frame.content.mayBeLeaf = added.mayBeLeaf;
            else if (!added.isImplied)
                frame.content.mayBeLeaf &= added.mayBeLeaf;
            frame.content.isImplied &= added.isImplied;
        }
        if (frame.content.items == 0)
            frame.content.items = added.items;
        else if (added.items != 0)
            frame.items.push_back({added.items, how});
        frame.content.owner = 0;
        return;
    }
    if (added.isImplied)
        return;
    if (frame.content.isImplied)
        return take(frame, added);
    if (kind == added.kind && kind != JsonContent::enumeration)
        return;
    if (kind == JsonContent::record && added.kind == JsonContent::map)
        return documents.note(SourceReport::furtherProperties, part);
    bool isNarrower = false;
    if (kind == added.kind) { // two enumerations: the included one applies
        std::vector<JsonMember> known(frame.members.begin(), frame.members.end());
        if (frame.isBorrowed)
            std::ranges::copy(membersOf(frame.content), std::back_inserter(known));
        step(known.size() + added.count);
        if (known.size() < added.count && includes(membersOf(added), known))
            return;
        isNarrower = includes(known, membersOf(added));
    }
    if (!isNarrower)
        documents.note(kind == JsonContent::map ? SourceReport::furtherProperties : SourceReport::kindsDiffer, part);
    if (kind != JsonContent::record && !(kind == JsonContent::map && added.kind != JsonContent::record))
        take(frame, added);
}

// Combines two alternatives. Records and enumerations are united, and items are merged. If the kinds differ, objects
// take precedence over arrays and arrays over leaves; different leaves become text.
void JsonContents::joinEither(Frame& frame, const JsonContent& added, Index part)
{
    const Kind kind = frame.content.kind;
    if (kind == JsonContent::none)
        return take(frame, added);
    if (kind == added.kind) {
        if (kind == JsonContent::record || kind == JsonContent::enumeration) {
            addMembers(frame, added, either);
        } else if (kind == JsonContent::map || kind == JsonContent::array) {
            frame.content.owner = 0;
            frame.content.mayBeLeaf |= added.mayBeLeaf;
            if (added.items == 0)
                frame.content.items = 0;
            if (frame.content.items == 0)
                frame.items.clear();
            else
                frame.items.push_back({added.items, either});
        }
        return;
    }
    if (isObject(kind) || isObject(added.kind)) {
        const bool isBoth = isObject(kind) && isObject(added.kind);
        documents.note(isBoth ? SourceReport::furtherProperties : SourceReport::kindsDiffer, part);
        if (!isObject(kind) || (kind == JsonContent::map && added.kind == JsonContent::record))
            take(frame, added);
        return;
    }
    if (kind == JsonContent::array || added.kind == JsonContent::array) {
        if (kind != JsonContent::array)
            take(frame, added);
        frame.content.owner = 0;
        frame.content.mayBeLeaf = true;
        return;
    }
    if (kind == JsonContent::number || added.kind == JsonContent::number)
        documents.note(SourceReport::kindsDiffer, part);
    take(frame, {.kind = JsonContent::text});
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
        if (tree.is(schema, JsonNode::boolean) && tree.text(schema) == "false")
            documents.note(SourceReport::elementNotAllowed, at, tree.key(at));
        else
            addField(frame, {tree[at].key, schema}, both);
    }
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
