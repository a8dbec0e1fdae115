#include "Import/Json/JsonTypes.h"

#include "Import/Full/Descriptions.h"
#include "Import/Json/JsonKind.h"

#include <algorithm>
#include <optional>

namespace {

using Index = JsonNode::Index;

// Returns the text up to its first sentence end or empty line. A full stop ends a sentence if white space follows and
// then no lower-case letter, so "e.g." doesn't.
std::string_view firstSentence(std::string_view text)
{
    for (std::size_t at = 0; (at = text.find_first_of(".!?\n", at)) != text.npos; ++at) {
        if (text[at] == '\n') {
            if (text.substr(at + 1).starts_with('\n'))
                return text.substr(0, at);
            continue;
        }
        const std::size_t next = std::min(text.find_first_not_of(kWhitespace, at + 1), text.size());
        const bool continues = next < text.size() && (next == at + 1 || (text[next] >= 'a' && text[next] <= 'z'));
        if (!continues)
            return text.substr(0, at + 1);
    }
    return text;
}

} // namespace

// Follows nested arrays to the value in them. A loop does, because only the innermost value has a type.
JsonTypes::Shape JsonTypes::shapeOf(Index schema, std::string_view name, SourceTypes::Index home)
{
    schema = tree.target(schema);
    if (home == SourceTypes::kNone && !isWanted(schema))
        return {};
    JsonContent content = contents.of(schema);
    Shape shape;
    std::optional<Shape> leaf; // of a value that may be an array or a single text or number
    for (; content.kind == JsonContent::array;
         content = content.items == 0 ? JsonContent() : contents.of(content.items)) {
        if (content.mayBeLeaf && !leaf)
            leaf = shape;
        if (++shape.depth > kMaxDepth) {
            documents.note(SourceReport::cutShort, schema,
                           "more than " + std::to_string(kMaxDepth) + " arrays inside each other");
            return {};
        }
    }
    // An object without known properties may hold anything, so it becomes text.
    const bool isObject =
        content.kind == JsonContent::map || (content.kind == JsonContent::record && content.count > 0);
    if (leaf)
        documents.note(SourceReport::kindsDiffer, schema);
    // A value that may also be an array of values becomes text, which doesn't repeat.
    if (leaf && !isObject)
        return *leaf;
    if (isObject) {
        shape.type = recordOf(content, name, home);
        // A map is a table of entries with a key and a value.
        shape.depth += content.kind == JsonContent::map ? 1 : 0;
    } else if (content.kind == JsonContent::record) {
        documents.note(SourceReport::anyContent, schema);
    } else if (content.isConditional) {
        // Text, because values of other alternatives, or that don't meet the condition, may be anything.
        if (content.kind == JsonContent::number)
            documents.note(SourceReport::kindsDiffer, schema);
    } else if (content.kind == JsonContent::enumeration) {
        shape.type = enumerationOf(content, name);
    } else if (content.kind == JsonContent::number || content.kind == JsonContent::time) {
        shape.type.kind = content.kind == JsonContent::number ? SourceTypes::kindNumber : SourceTypes::kindTime;
    }
    return shape;
}

std::string_view JsonTypes::toModelName(std::string_view name, SourcePlace place, SourceTypes& types,
                                        SourceReport& report)
{
    CString made = toXmlText(name);
    std::ranges::replace(made, '\\', '_'); // it separates the folders of types
    if (made.empty())
        made = "_";
    if (made != name)
        report.add(SourceReport::nameAdjusted, place, CString(name) + " is " + made);
    return types.keep(made);
}

std::string_view JsonTypes::nameOf(Index schema)
{
    const auto [known, isNew] = names.try_emplace(schema);
    if (!isNew)
        return known->second;
    std::string_view name;
    if (documents.isDeclared(schema)) {
        CString title;
        appendCollapsed(title, trimmed(tree.textOf(schema, JsonWord::title)));
        // A definition is named by its key, a document by its title or its file.
        if (tree[schema].parent != 0)
            name = toModelName(tree.key(schema), schema);
        else
            name = types.keep(toXmlName(title.empty() ? documents.nameOf(schema) : title));
    }
    return names[schema] = name;
}

// Returns the name of a record or enumeration: the schema's own, else its key if that was chosen as a name, else
// `name`, that of the field. The name by the key is the same for all fields that refer to the schema.
std::string_view JsonTypes::nameOf(Index schema, std::string_view name)
{
    const std::string_view own = nameOf(schema);
    const Index parent = tree[schema].parent;
    if (!own.empty() || !tree.is(parent, JsonNode::object))
        return own.empty() ? name : own;
    const bool isKeyName = tree[parent].role == JsonNode::names ? tree.keyOf(parent) == JsonWord::properties
                                                                : tree.keyOf(schema) == JsonWord::none;
    return isKeyName ? toModelName(tree.key(schema), schema) : name;
}

// Returns the record of a content, added if its owner has none yet. finish() reads its fields.
SourceTypes::Type JsonTypes::recordOf(const JsonContent& content, std::string_view name, SourceTypes::Index home)
{
    // Schemas with the same owner are one type, whichever field refers to it first.
    const auto [known, isNew] = records.try_emplace(content.owner);
    if (!isNew)
        return known->second;
    // A declared schema is shared, so its record has no home that a taken name would get as prefix.
    const bool isNamed = !nameOf(content.owner).empty();
    const SourceTypes::Index record = types.addRecord({.name = nameOf(content.owner, name),
                                                       .description = describe(content.owner),
                                                       .place = tree[content.owner].place,
                                                       .home = isNamed ? SourceTypes::kNone : home,
                                                       .isNamed = isNamed});
    pending.push_back({content, record});
    return records[content.owner] = {SourceTypes::kindRecord, record};
}

// Returns the enumeration of a content, named after its owner if that has a name, else `name`.
SourceTypes::Type JsonTypes::enumerationOf(const JsonContent& content, std::string_view name)
{
    const std::string_view called = nameOf(content.owner, name);
    const bool isNamed = !nameOf(content.owner).empty();
    // A list that schemas share is one enumeration for each name it is used with. The name of a schema may be long, and
    // is the same for all fields.
    const std::uint64_t key = isNamed ? joined(content.owner, 0) : joined(content.first, tree.names.intern(called));
    const auto [known, isNew] = enumerations.insert(key, SourceTypes::kNone);
    if (isNew) {
        std::vector<SourceTypes::Constant> constants;
        // The description of a single constant is that of the whole.
        const bool isDescribed = content.count > 1;
        for (const JsonMember constant : contents.membersOf(content)) {
            const std::string_view value = tree.names[constant.name];
            if (!isXmlText(value))
                report.add(SourceReport::nameAdjusted, tree[content.owner].place,
                           CString(value) + " is " + toXmlText(value));
            constants.push_back({types.keep(value), isDescribed ? describe(constant.schema) : ""});
        }
        known = types.addEnumeration({called, describe(content.owner), isNamed, tree[content.owner].place}, constants);
    }
    return {SourceTypes::kindEnumeration, known};
}

void JsonTypes::finish()
{
    for (; finished < pending.size(); ++finished)
        // Copied, because reading fields appends further records.
        readFields(Pending(pending[finished]));
    contents.readDropped();
}

// A map may have any keys, so its record is an entry: a key and a value.
void JsonTypes::readFields(const Pending& record)
{
    fields.clear();
    if (record.content.kind == JsonContent::map) {
        fields.push_back({"key"});
        fields.push_back(record.content.items == 0 ? SourceTypes::Field{"value"}
                                                   : fieldOf("value", record.content.items, record.record));
    } else {
        for (std::uint32_t i = 0; i < record.content.count; ++i) {
            // Copied, because working out its schema moves the fields.
            const JsonMember field = contents.membersOf(record.content)[i];
            std::string_view& name = keptNames[field.name];
            // Converted once for all records that have the field, so a changed name is reported once.
            if (name.empty())
                name = toModelName(tree.names[field.name], field.schema);
            fields.push_back(fieldOf(name, field.schema, record.record));
        }
        addRequired(record.content);
    }
    types.setFields(record.record, fields);
}

// Adds the fields of properties that a schema only requires. They may have any value. If it allows no further
// properties, nothing can meet it.
void JsonTypes::addRequired(const JsonContent& content)
{
    std::vector<Index> required;
    const auto collect = [&](Index schema) {
        for (const Index at : tree.childrenOf(schema, JsonWord::required, JsonNode::array))
            if (tree.is(at, JsonNode::string))
                required.push_back(at);
    };
    collect(content.owner);
    for (const Index at : tree.childrenOf(content.owner, JsonWord::allOf, JsonNode::array))
        collect(tree.target(at));
    if (required.empty())
        return;
    std::unordered_set<NameTable::Id> declared;
    for (const Index at : tree.childrenOf(content.owner, JsonWord::properties, JsonNode::object))
        declared.insert(tree[at].key); // also those that a schema forbids
    for (const JsonMember& field : contents.membersOf(content))
        declared.insert(field.name);
    const Index further = tree.find(content.owner, JsonWord::additionalProperties, JsonNode::boolean);
    for (const Index at : required)
        if (!declared.insert(tree[at].text).second)
            continue;
        else if (tree.text(further) == "false")
            documents.note(SourceReport::elementNotAllowed, at, tree.text(at));
        else
            fields.push_back({toModelName(tree.text(at), at)});
}

SourceTypes::Field JsonTypes::fieldOf(std::string_view name, Index schema, SourceTypes::Index record)
{
    const Shape shape = shapeOf(schema, name, record);
    // If schemas of several parts are combined, the first one describes the field.
    return {name, describe(documents.originOf(schema)), shape.type, SourceTypes::roleElement, shape.depth};
}

std::string_view JsonTypes::descriptionOf(Index text, bool isFirstSentence)
{
    const auto [known, isNew] = descriptions.try_emplace(joined(tree[text].text, isFirstSentence ? 1 : 0));
    if (isNew) {
        const std::string_view whole = trimmed(tree.text(text));
        const std::string_view said = isFirstSentence ? firstSentence(whole) : whole;
        CString words;
        appendCollapsed(words, said);
        known->second = types.keep(shortDescription(words));
        report.count(SourceReport::documentationCut,
                     said.size() < whole.size() || known->second.size() < trimmed(words).size());
    }
    return known->second;
}

// Returns the title, else the first sentence of the description; if there is neither, that of the referenced schema.
std::string_view JsonTypes::describe(Index schema)
{
    constexpr int longestChain = 20;
    // Bounded, because references may form a cycle.
    for (int i = 0; i < longestChain && schema != 0; ++i) {
        schema = tree.target(schema);
        Index said = tree.find(schema, JsonWord::title, JsonNode::string);
        const bool isTitle = !trimmed(tree.text(said)).empty();
        if (!isTitle)
            said = tree.find(schema, JsonWord::description, JsonNode::string);
        if (said != 0)
            return descriptionOf(said, !isTitle);
        const Index reference = tree.find(schema, JsonWord::ref, JsonNode::string);
        schema = reference == 0 ? 0 : documents.resolve(reference);
    }
    if (schema != 0)
        report.count(SourceReport::documentationCut);
    return {};
}

// A component that is only a reference to a file is known by its key, not by the title or the name of the file.
void JsonTypes::nameReferred(Index holder)
{
    for (const Index at : tree.childrenOf(tree.is(holder, JsonNode::object) ? holder : 0)) {
        const bool wasPaused = report.pause(true); // what is missing is reported when types are read
        const Index schema = contents.baseOf(at);
        report.pause(wasPaused);
        const bool hasKey = tree[schema].parent != 0 && documents.isDeclared(schema);
        if (tree[schema].place.file != tree[at].place.file && !hasKey)
            names.try_emplace(schema, toModelName(tree.key(at), at));
    }
}

void JsonTypes::declareMembers(Index holder, bool asCandidates)
{
    if (!tree.is(holder, JsonNode::object))
        return;
    for (const Index at : tree.childrenOf(holder)) {
        const Index schema = tree.target(at);
        const bool isOther = foreign.contains(schema) ||
                             tree.find(schema, JsonWord::schemaFormat, JsonNode::string) != 0; // holds another format
        if (isOther || !isWanted(schema))
            continue;
        if (asCandidates)
            addCandidate(schema, tree.key(at));
        else
            shapeOf(schema, toModelName(tree.key(at), at));
    }
}

// For main types in documents that the sources refer to: only requested names are added, because these documents may
// declare thousands.
void JsonTypes::addDeclared(Index root, std::string_view name)
{
    const auto add = [&](Index schema, std::string_view key) {
        if (tree.is(schema, JsonNode::object) && isWanted(schema))
            addCandidate(schema, key);
    };
    const bool hasOwn = hasOwnType(root);
    if (nameOf(root) == name && hasOwn)
        add(root, {});
    for (const Index holder : documents.definitionsOf(root))
        add(tree.find(holder, name), name);
    // A part of an API description may hold schemas directly, by name.
    if (const Index schema = tree.find(root, name); !hasOwn && tree.keyOf(schema) == JsonWord::none)
        add(schema, name);
}

bool JsonTypes::hasOwnType(Index root)
{
    const bool isAvro = isAvroType(tree.textOf(root, JsonWord::type));
    if (tree.find(root, JsonWord::type) != 0 && !isAvro)
        return true;
    if (!isWanted(tree.target(root)))
        return false;
    const JsonContent::Kind kind = contents.of(root).kind;
    return isAvro ? kind != JsonContent::text : kind != JsonContent::none; // an unknown type is text
}

void JsonTypes::addCandidate(Index schema, std::string_view name)
{
    schema = tree.target(schema);
    const std::string_view own = nameOf(schema);
    const std::string_view called = own.empty() ? toModelName(name, schema) : own;
    const Shape shape = shapeOf(schema, called);
    addCandidate(shape, called, tree[schema].place);
    // The record of a schema that only refers to another has that one's name. It may be requested by this one, too.
    if (shape.type.kind == SourceTypes::kindRecord && shape.depth == 0 &&
        types.records[shape.type.index].name != called)
        types.addCandidate({.name = called,
                            .type = shape.type,
                            .place = tree[schema].place,
                            .source = source,
                            .isType = true,
                            .description = describe(schema)});
}

// A body that is not an object has no type of its own, unless it is the payload of a message.
void JsonTypes::addBody(Index schema, const CString& name, bool mayBeValue)
{
    if (!isWanted(tree.target(schema)))
        return;
    const std::string_view called = toModelName(name, schema);
    const Shape shape = shapeOf(schema, called);
    if (mayBeValue || shape.type.kind == SourceTypes::kindRecord)
        addCandidate(shape, called, tree[tree.target(schema)].place);
    if (mayBeValue && (shape.type.kind != SourceTypes::kindRecord || shape.depth > 0))
        types.candidates.back().description = describe(schema);
}

void JsonTypes::addCandidate(Shape shape, std::string_view name, SourcePlace place, std::string_view uri)
{
    const bool isRecord = shape.type.kind == SourceTypes::kindRecord && shape.depth == 0;
    // Several operations may share a body.
    if (isRecord && !candidates.insert(joined(source, shape.type.index)).second)
        return;
    const std::string_view called = isRecord ? types.records[shape.type.index].name : name;
    const SourceTypes::Index space = isRecord      ? types.records[shape.type.index].space
                                     : uri.empty() ? 0
                                                   : types.spaceOf(uri);
    types.addCandidate({.name = called,
                        .type = shape.type,
                        .place = place,
                        .uri = uri,
                        .source = source,
                        .space = space,
                        .repeats = shape.depth});
}
