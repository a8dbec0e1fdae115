// JsonContents: the meaning of each keyword by itself.
#include "Import/Json/JsonContents.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

namespace {

// Returns the kinds of values that a keyword may have, as a set of bits; 0 if it may have any.
unsigned kindsFor(JsonWord key)
{
    constexpr unsigned text = 1u << JsonNode::string, list = 1u << JsonNode::array, object = 1u << JsonNode::object,
                       schema = object | 1u << JsonNode::boolean;
    switch (key) {
    case JsonWord::ref:
    case JsonWord::dynamicRef:
    case JsonWord::recursiveRef:
    case JsonWord::format:
        return text;
    case JsonWord::allOf:
    case JsonWord::oneOf:
    case JsonWord::anyOf:
    case JsonWord::prefixItems:
    case JsonWord::enumWord:
        return list;
    case JsonWord::dependentSchemas:
    case JsonWord::dependencies:
    case JsonWord::properties:
    case JsonWord::patternProperties:
        return object;
    case JsonWord::additionalProperties:
    case JsonWord::unevaluatedProperties:
    case JsonWord::additionalItems:
    case JsonWord::unevaluatedItems:
    case JsonWord::contains:
        return schema;
    case JsonWord::items:
        return schema | list;
    case JsonWord::type:
        return text | list;
    default:
        return 0;
    }
}

} // namespace

void JsonContents::readMembers(Index holder, How how, std::vector<Part>& parts) const
{
    for (Index at = tree[holder].firstChild; at != 0; at = tree[at].next)
        parts.push_back({tree.target(at), how});
}

void JsonContents::readSchema(Frame& frame)
{
    const Index schema = frame.node;
    const Index reference = tree.find(schema, JsonWord::ref, JsonNode::string);
    if (reference != 0 && documents.ignoresSiblings(schema))
        return readReference(frame, reference);
    Own own;
    for (Index at = tree[schema].firstChild; at != 0; at = tree[at].next)
        readKeyword(frame, at, own);
    const bool saysMore = frame.parts.size() != 1 || own.type != 0 || own.isListed || own.hasItems ||
                          !own.mapValues.empty() || own.format != 0;
    frame.isReference = frame.isReference && !saysMore;
    // Conditional parts come last, because they only add missing fields.
    std::stable_partition(frame.parts.begin(), frame.parts.end(), [](const Part& part) { return part.how != maybe; });
    readOwn(frame, own);
}

void JsonContents::readKeyword(Frame& frame, Index child, Own& own)
{
    const Index node = tree.target(child);
    const bool isObject = tree.is(node, JsonNode::object), isArray = tree.is(node, JsonNode::array);
    const JsonWord key = tree.keyOf(child);
    if (const unsigned kinds = kindsFor(key); kinds != 0 && (kinds & 1u << tree[node].kind) == 0)
        return documents.note(SourceReport::invalidValue, child, tree.key(child));
    switch (key) {
    case JsonWord::ref:
    case JsonWord::dynamicRef:
    case JsonWord::recursiveRef:
        readReference(frame, child);
        break;
    case JsonWord::allOf:
    case JsonWord::extends: // of draft 3, and of generators of code; it may be a single schema
        if (isArray)
            readMembers(node, both, frame.parts);
        else if (isObject)
            frame.parts.push_back({node, both});
        break;
    case JsonWord::oneOf:
    case JsonWord::anyOf:
        report.count(SourceReport::alternatives);
        frame.parts.push_back({node, both});
        break;
    case JsonWord::ifWord:
    case JsonWord::then:
    case JsonWord::elseWord:
        frame.parts.push_back({node, maybe});
        break;
    case JsonWord::dependentSchemas:
    case JsonWord::dependencies:
        for (Index at = tree[node].firstChild; at != 0; at = tree[at].next)
            if (key != JsonWord::dependencies || !tree.is(tree.target(at), JsonNode::array)) // of property names
                frame.parts.push_back({tree.target(at), maybe});
        break;
    case JsonWord::properties:
        frame.parts.push_back({node, JsonContents::own});
        own.hasProperties = own.hasProperties || tree[node].firstChild != 0;
        countOptional(frame.node, node);
        break;
    case JsonWord::type:
        own.type = node;
        break;
    case JsonWord::format:
        own.format = tree[node].text;
        break;
    case JsonWord::enumWord:
        own.isListed = true;
        for (Index at = tree[node].firstChild; at != 0; at = tree[at].next)
            own.values.push_back(tree.target(at));
        break;
    case JsonWord::constWord:
        own.isListed = true;
        own.values.assign(1, node);
        break;
    case JsonWord::items:
    case JsonWord::prefixItems:
        own.hasItems = true;
        if (isArray)
            for (Index at = tree[node].firstChild; at != 0; at = tree[at].next)
                own.items.push_back(tree.target(at));
        else if (isObject)
            own.items.push_back(node);
        break;
    case JsonWord::additionalItems:
        // It has no effect without a list of items.
        if (isObject && tree.is(tree.find(frame.node, JsonWord::items), JsonNode::array))
            own.items.push_back(node);
        break;
    case JsonWord::unevaluatedItems:
        own.hasItems = own.hasItems || isObject;
        if (isObject)
            own.items.push_back(node);
        break;
    case JsonWord::contains:
        countDetail(key);
        if (mayBeObject(node))
            own.contained = node;
        break;
    case JsonWord::additionalProperties:
    case JsonWord::unevaluatedProperties:
        if (isObject)
            own.mapValues.push_back(node);
        break;
    case JsonWord::patternProperties:
        for (Index at = tree[node].firstChild; at != 0; at = tree[at].next)
            own.mapValues.push_back(tree.target(at));
        break;
    case JsonWord::discriminator:
        readDiscriminator(frame, node);
        break;
    default:
        countDetail(key);
    }
}

void JsonContents::readReference(Frame& frame, Index child)
{
    const Index node = tree.target(child);
    const Index target = documents.resolve(child, tree[node].text);
    if (target == 0)
        frame.content.kind = JsonContent::text;
    else
        frame.parts.push_back({target, both});
    frame.isReference = true;
}

void JsonContents::readDiscriminator(Frame& frame, Index node)
{
    const Index name = tree.find(node, JsonWord::propertyName, JsonNode::string);
    frame.mapping = tree.find(node, JsonWord::mapping, JsonNode::object);
    frame.discriminator = tree[name].text;
}

// Returns the detail that a keyword is; nothing for other keywords.
std::optional<SourceReport::Construct> JsonContents::detailOf(JsonWord key)
{
    switch (key) {
    case JsonWord::pattern:
    case JsonWord::minimum:
    case JsonWord::maximum:
    case JsonWord::exclusiveMinimum:
    case JsonWord::exclusiveMaximum:
    case JsonWord::minLength:
    case JsonWord::maxLength:
    case JsonWord::multipleOf:
    case JsonWord::minProperties:
    case JsonWord::maxProperties:
    case JsonWord::propertyNames:
    case JsonWord::contains:
    case JsonWord::notWord:
        return SourceReport::facet;
    case JsonWord::minItems:
    case JsonWord::maxItems:
    case JsonWord::uniqueItems:
        return SourceReport::occurrenceBounds;
    case JsonWord::defaultWord:
        return SourceReport::defaultValue;
    case JsonWord::nullable:
        return SourceReport::nillable;
    default:
        return std::nullopt;
    }
}

void JsonContents::countDetail(JsonWord key)
{
    if (const auto detail = detailOf(key))
        report.count(*detail);
}

void JsonContents::countOptional(Index schema, Index properties)
{
    std::size_t all = 0, required = 0;
    for (Index at = tree[properties].firstChild; at != 0; at = tree[at].next)
        ++all;
    const Index names = tree.find(schema, JsonWord::required, JsonNode::array);
    for (Index at = tree[names].firstChild; at != 0; at = tree[at].next)
        required += tree.is(at, JsonNode::string) && tree.find(properties, tree[at].text) != 0 ? 1 : 0;
    report.count(SourceReport::optionality, all - std::min(all, required));
}

// Returns the types that a schema names, in their order. Null among several is left out.
std::vector<JsonWord> JsonContents::typesOf(Index type)
{
    constexpr JsonWord known[] = {JsonWord::string, JsonWord::number, JsonWord::integer, JsonWord::boolean,
                                  JsonWord::object, JsonWord::array,  JsonWord::nullWord};
    std::vector<JsonWord> types;
    const bool isList = tree.is(type, JsonNode::array);
    for (Index at = isList ? tree[type].firstChild : type; at != 0; at = isList ? tree[at].next : 0) {
        const JsonWord word = tree.wordOf(tree[at].text);
        if (!tree.is(at, JsonNode::string) || std::ranges::find(known, word) == std::end(known))
            documents.note(SourceReport::invalidValue, at, tree.text(at));
        if (isList && word == JsonWord::nullWord)
            report.count(SourceReport::nillable);
        else
            types.push_back(word);
    }
    return types;
}

// Combines the schema's own keywords. Its types are alternatives; without a "type" the type follows from the other
// keywords.
void JsonContents::readOwn(Frame& frame, Own& own)
{
    if (own.hasProperties && !own.mapValues.empty()) {
        documents.note(SourceReport::furtherProperties, frame.node);
        own.mapValues.clear();
    }
    std::vector<JsonWord> wanted = typesOf(own.type);
    const auto texts = static_cast<std::size_t>(std::ranges::count(wanted, JsonWord::string));
    if (own.isListed && (texts > 0 || wanted.empty()))
        return join(frame, contentOfValues(frame, own, texts > 0 && texts == wanted.size()), both, frame.node);
    if (own.type == 0) {
        if (own.hasProperties || !own.mapValues.empty())
            wanted.push_back(JsonWord::object);
        else if (own.hasItems || own.contained != 0)
            wanted.push_back(JsonWord::array);
        else if (own.format != 0)
            wanted.push_back(JsonWord::string);
    }
    JsonContent before = std::exchange(frame.content, {});
    for (const JsonWord type : wanted)
        if (type != JsonWord::nullWord)
            joinEither(frame, contentOfType(type, frame, own), frame.node);
    if (before.kind != JsonContent::none)
        joinBoth(frame, before, both, frame.node);
}

JsonContent JsonContents::contentOfType(JsonWord type, Frame& frame, Own& own)
{
    JsonContent content;
    content.owner = frame.node;
    switch (type) {
    case JsonWord::integer:
    case JsonWord::number:
        content.kind = JsonContent::number;
        break;
    case JsonWord::object:
        content.kind = own.mapValues.empty() ? JsonContent::record : JsonContent::map;
        content.items = choiceOf(own.mapValues);
        break;
    case JsonWord::array:
        content.kind = JsonContent::array;
        content.items = choiceOf(own.items);
        // Some of the items are like the contained one, so it narrows none of them.
        if (own.contained != 0) {
            const Index any =
                content.items != 0 ? content.items : tree.add(JsonNode::object, 0, 0, JsonWord::none, own.contained);
            content.items = mergedOf(any, std::array{Part{own.contained, maybe}});
        }
        break;
    default:
        const JsonWord format = tree.wordOf(own.format);
        const bool isTime = format == JsonWord::dateTime || format == JsonWord::date || format == JsonWord::time;
        content.kind = isTime && type == JsonWord::string ? JsonContent::time : JsonContent::text;
    }
    return content;
}

// Returns whether a schema says something about objects.
bool JsonContents::mayBeObject(Index schema)
{
    schema = baseOf(schema);
    for (const JsonWord word : {JsonWord::properties, JsonWord::allOf, JsonWord::anyOf, JsonWord::oneOf})
        if (tree.find(schema, word) != 0)
            return true;
    return false;
}

// Returns an enumeration of the listed values if they are texts; null is left out. With `isText`, numbers and booleans
// count as texts, too.
JsonContent JsonContents::contentOfValues(Frame& frame, const Own& own, bool isText)
{
    JsonContent content;
    content.owner = frame.node;
    content.first = static_cast<std::uint32_t>(constants.size());
    // A schema that lists one value describes it, but a property's describes the field.
    const bool isOfValue = own.values.size() == 1 && tree.keyOf(tree[frame.node].parent) != JsonWord::properties;
    std::size_t numbers = 0, texts = 0, others = 0;
    std::unordered_set<NameTable::Id> visited;
    for (const Index value : own.values) {
        const JsonNode::Kind kind = tree[value].kind;
        const bool isScalar = kind == JsonNode::number || kind == JsonNode::boolean;
        if (kind == JsonNode::string || (isText && isScalar))
            ++texts;
        else if (kind == JsonNode::number)
            ++numbers;
        else if (kind != JsonNode::null)
            ++others;
        if (kind == JsonNode::object || kind == JsonNode::array) // no kind has such constants
            documents.note(SourceReport::invalidValue, value);
        else if (kind != JsonNode::null && visited.insert(tree[value].text).second)
            constants.push_back({tree[value].text, isOfValue ? frame.node : 0});
    }
    step(own.values.size());
    if (texts > 0 && numbers == 0 && others == 0) {
        content.kind = JsonContent::enumeration;
        content.count = static_cast<std::uint32_t>(constants.size() - content.first);
        return content;
    }
    constants.resize(content.first);
    if (numbers + others + texts > 0)
        content.kind = numbers > 0 && texts == 0 && others == 0 ? JsonContent::number : JsonContent::text;
    if ((numbers > 0) + (texts > 0) + (others > 0) > 1)
        documents.note(SourceReport::kindsDiffer, frame.node);
    return content;
}
