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

void JsonContents::join(Frame& frame, const JsonContent& added, How how, Index part)
{
    // The same object again changes nothing.
    if (frame.isBorrowed && isObject(added.kind) && added.owner == frame.content.owner && !frame.content.isConditional)
        return;
    frame.objects += how == either && isObject(added.kind) ? 1 : 0;
    const Kind kind = frame.content.kind;
    if (added.kind == JsonContent::none) {
        // Null is no kind, and bounds are those of numbers.
        const bool isNarrow = tree.hasAny(baseOf(part), {JsonWord::type, JsonWord::constWord, JsonWord::enumWord,
                                                         JsonWord::nullable, JsonWord::minimum, JsonWord::maximum});
        frame.allowsAny = frame.allowsAny || (how == either && !isNarrow);
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
    if (kind == JsonContent::record && added.kind == JsonContent::map)
        return noteFurtherProperties(frame, added, part);
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
    if (isRepeated)
        return joinItems(frame, added, how);
    if (added.isImplied)
        return;
    if (frame.content.isImplied)
        return take(frame, added);
    if (kind == added.kind && kind != JsonContent::enumeration)
        return;
    if (kind == JsonContent::enumeration && added.kind == kind)
        return joinEnumerations(frame, added, part);
    if (kind == JsonContent::map && added.kind == JsonContent::record)
        noteFurtherProperties(frame, frame.content, part);
    else
        documents.note(SourceReport::kindsDiffer, part);
    if (kind != JsonContent::record && !(kind == JsonContent::map && added.kind != JsonContent::record))
        take(frame, added);
}

// Combines two arrays or two maps that both apply. Items alone don't exclude other kinds.
void JsonContents::joinItems(Frame& frame, const JsonContent& added, How how)
{
    JsonContent& content = frame.content;
    if (how == both) {
        if (content.isImplied)
            content.mayBeLeaf = added.mayBeLeaf;
        else if (!added.isImplied)
            content.mayBeLeaf &= added.mayBeLeaf;
        content.isImplied &= added.isImplied;
    }
    if (content.items == 0)
        content.items = added.items;
    else if (added.items != 0)
        frame.items.push_back({added.items, how});
    content.owner = 0;
}

// Of two enumerations that both apply, one whose constants the other includes is used, else the later one.
void JsonContents::joinEnumerations(Frame& frame, const JsonContent& added, Index part)
{
    std::vector<JsonMember> known(frame.members.begin(), frame.members.end());
    if (frame.isBorrowed)
        std::ranges::copy(membersOf(frame.content), std::back_inserter(known));
    const std::span<const JsonMember> others = membersOf(added);
    step(known.size() + others.size());
    if (known.size() < others.size() && includes(others, known))
        return;
    if (!includes(known, others))
        documents.note(SourceReport::kindsDiffer, part);
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
        if (isObject(kind) && isObject(added.kind))
            noteFurtherProperties(frame, kind == JsonContent::map ? frame.content : added, part);
        else
            documents.note(SourceReport::kindsDiffer, part);
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

// Reports a map whose properties a record doesn't have.
void JsonContents::noteFurtherProperties(const Frame& frame, const JsonContent& map, Index part)
{
    const bool allowsAny = map.items == 0 || isUnrestricted(map.items);
    if (!allowsAny || !frame.items.empty())
        documents.note(SourceReport::furtherProperties, part);
}
