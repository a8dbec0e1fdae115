// JsonContents: the meaning of each keyword by itself, and references.
#include "Import/Json/JsonContents.h"
#include "Import/Json/JsonKind.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

// A schema is read in two steps: each keyword adds a part to the frame, or its value to Own; readOwn() then combines
// keywords that belong together. Keywords have the same meaning in all drafts, except identifiers and keywords beside a
// "$ref". Unknown keywords are ignored, because JSON Schema allows them.
namespace {

// The common properties of keywords. A value of a wrong kind is a loss, because it changes the types.
struct Keyword
{
    unsigned kinds = 0;                              // of values that it may have, as a set of bits; 0 for any
    std::optional<SourceReport::Construct> detail{}; // the detail to count
};

// By word. A keyword may have both columns: "contains" must be a schema, and is counted.
constexpr auto kKeywords = [] {
    using enum JsonWord;
    constexpr unsigned isText = 1u << JsonNode::string, isNumber = 1u << JsonNode::number,
                       isFlag = 1u << JsonNode::boolean, isList = 1u << JsonNode::array,
                       isObject = 1u << JsonNode::object, isSchema = isObject | isFlag;
    std::array<Keyword, static_cast<std::size_t>(wordCount)> table{};
    const auto rowOf = [&table](JsonWord key) -> Keyword& { return table[static_cast<std::size_t>(key)]; };
    for (const JsonWord key : {ref, dynamicRef, recursiveRef, format, pattern})
        rowOf(key).kinds = isText;
    for (const JsonWord key : {title, description})
        rowOf(key).kinds = isText | 1u << JsonNode::null; // of a key of YAML without a value
    for (const JsonWord key : {minimum, maximum, minLength, maxLength, multipleOf, minProperties, maxProperties,
                               minItems, maxItems, minContains, maxContains})
        rowOf(key).kinds = isNumber;
    for (const JsonWord key : {exclusiveMinimum, exclusiveMaximum})
        rowOf(key).kinds = isNumber | isFlag; // up to draft 4
    for (const JsonWord key : {uniqueItems, nullable})
        rowOf(key).kinds = isFlag;
    rowOf(required).kinds = isList | isFlag; // of a property, up to draft 3
    for (const JsonWord key : {allOf, oneOf, anyOf, prefixItems, enumWord})
        rowOf(key).kinds = isList;
    for (const JsonWord key :
         {dependentSchemas, dependentRequired, dependencies, properties, patternProperties, defs, definitions})
        rowOf(key).kinds = isObject;
    for (const JsonWord key : {additionalProperties, unevaluatedProperties, additionalItems, unevaluatedItems, contains,
                               propertyNames, notWord})
        rowOf(key).kinds = isSchema;
    rowOf(items).kinds = isSchema | isList;
    rowOf(type).kinds = isText | isList;
    for (const JsonWord key :
         {pattern, minimum, maximum, exclusiveMinimum, exclusiveMaximum, minLength, maxLength, multipleOf,
          minProperties, maxProperties, propertyNames, contains, minContains, maxContains, dependentRequired, notWord,
          contentSchema, contentEncoding, contentMediaType})
        rowOf(key).detail = SourceReport::facet;
    for (const JsonWord key : {minItems, maxItems, uniqueItems})
        rowOf(key).detail = SourceReport::occurrenceBounds;
    rowOf(defaultWord).detail = SourceReport::defaultValue;
    rowOf(nullable).detail = SourceReport::nillable;
    return table;
}();

bool isTimeFormat(JsonWord format)
{
    return isOneOf(format, {JsonWord::dateTime, JsonWord::date, JsonWord::time});
}

} // namespace

void JsonContents::appendTargets(Index holder, std::vector<Index>& targets) const
{
    for (const Index at : tree.childrenOf(holder))
        targets.push_back(tree.target(at));
}

// Reads the keywords of a schema. A "$ref" that replaces its siblings is read alone, so their details don't count.
void JsonContents::readSchema(Frame& frame)
{
    const Index schema = frame.node;
    const Index reference = tree.find(schema, JsonWord::ref, JsonNode::string);
    if (reference != 0 && documents.ignoresSiblings(schema))
        return readReference(frame, reference);
    Own own;
    for (const Index at : tree.childrenOf(schema))
        readKeyword(frame, at, own);
    const bool saysMore = frame.parts.size() != 1 || own.type != 0 || own.isListed || own.hasItems ||
                          !own.mapValues.empty() || own.format != 0;
    frame.isReference = frame.isReference && !saysMore;
    // Conditional parts come last, because they only add missing fields.
    std::stable_partition(frame.parts.begin(), frame.parts.end(), [](const Part& part) { return part.how != maybe; });
    readOwn(frame, own);
}

// Long, because it has a case for each keyword that matters for types. Keywords without a case are only counted, by the
// table, or ignored.
void JsonContents::readKeyword(Frame& frame, Index child, Own& own)
{
    const Index node = tree.target(child);
    const bool isObject = tree.is(node, JsonNode::object);
    const JsonWord key = tree.keyOf(child);
    const auto [kinds, detail] = kKeywords[static_cast<std::size_t>(key)];
    const bool isEmptyList =
        tree.is(node, JsonNode::array) && tree[node].firstChild == 0 &&
        isOneOf(key, {JsonWord::type, JsonWord::enumWord, JsonWord::allOf, JsonWord::oneOf, JsonWord::anyOf});
    if (isEmptyList || (kinds != 0 && (kinds & 1u << tree[node].kind) == 0))
        return documents.note(SourceReport::invalidValue, child, tree.key(child));
    if (detail)
        report.count(*detail);
    switch (key) {
    case JsonWord::ref:
    case JsonWord::dynamicRef:
    case JsonWord::recursiveRef:
        readReference(frame, child);
        break;
    case JsonWord::allOf:
    case JsonWord::extends: // of draft 3, and of generators of code; it may be a single schema
        if (isObject)
            frame.parts.push_back({node, both});
        else if (tree.is(node, JsonNode::array))
            for (const Index at : tree.childrenOf(node))
                frame.parts.push_back({at, both});
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
        for (const Index at : tree.childrenOf(node))
            if (key != JsonWord::dependencies || !tree.is(tree.target(at), JsonNode::array)) // of property names
                frame.parts.push_back({at, maybe});
        break;
    case JsonWord::properties:
        frame.parts.push_back({node, JsonContents::own});
        // An empty list doesn't make a schema an object.
        own.hasProperties = own.hasProperties || tree[node].firstChild != 0;
        countOptional(frame.node, node);
        break;
    case JsonWord::type:
        own.type = node;
        break;
    case JsonWord::format:
        own.format = tree[node].text;
        report.count(SourceReport::facet, !isTimeFormat(tree.wordOf(own.format)));
        break;
    case JsonWord::description: // the title takes precedence
        report.count(SourceReport::documentationCut, !trimmed(tree.textOf(frame.node, JsonWord::title)).empty());
        break;
    case JsonWord::enumWord:
        own.isListed = true;
        appendTargets(node, own.values);
        break;
    case JsonWord::constWord:
        own.isListed = true;
        own.constant = node;
        break;
    case JsonWord::items:
    case JsonWord::prefixItems:
    case JsonWord::additionalItems:
    case JsonWord::unevaluatedItems:
    case JsonWord::contains:
        readItems(frame.node, key, node, own);
        break;
    case JsonWord::additionalProperties:
    case JsonWord::unevaluatedProperties:
        if (isObject)
            own.mapValues.push_back(node);
        break;
    case JsonWord::patternProperties:
        appendTargets(node, own.mapValues);
        std::erase_if(own.mapValues, [this](Index value) { return isBoolean(value, "false"); });
        break;
    case JsonWord::discriminator:
        readDiscriminator(frame, node);
        break;
    default:
        break;
    }
}

// In AsyncAPI a discriminator is only the name of a property.
void JsonContents::readDiscriminator(Frame& frame, Index node)
{
    const Index property = tree.find(node, JsonWord::propertyName, JsonNode::string);
    if (tree.is(node, JsonNode::object) && property == 0)
        return documents.note(SourceReport::invalidValue, node, "no propertyName");
    frame.mapping = tree.find(node, JsonWord::mapping, JsonNode::object);
    frame.discriminator = tree[property].text;
}

// Reads a keyword about the items of an array.
void JsonContents::readItems(Index schema, JsonWord key, Index node, Own& own)
{
    const bool isObject = tree.is(node, JsonNode::object);
    // A leaf adds nothing to the items.
    if (key == JsonWord::contains) {
        if (tree.hasAny(baseOf(node), {JsonWord::properties, JsonWord::allOf, JsonWord::anyOf, JsonWord::oneOf}))
            own.contained = node; // may be an object
        return;
    }
    // additionalItems has no effect without a list of items.
    if (key == JsonWord::additionalItems && !tree.is(tree.find(schema, JsonWord::items), JsonNode::array))
        return;
    own.hasItems = own.hasItems || isOneOf(key, {JsonWord::items, JsonWord::prefixItems}) ||
                   (key == JsonWord::unevaluatedItems && isObject);
    if (isObject)
        own.items.push_back(node);
    else if (tree.is(node, JsonNode::array))
        appendTargets(node, own.items);
}

// A reference that leads nowhere has been reported, and becomes text.
void JsonContents::readReference(Frame& frame, Index child)
{
    const Index target = referenced(child);
    if (target == 0)
        frame.content.kind = JsonContent::text;
    else
        frame.parts.push_back({target, both});
    frame.isReference = true;
}

// Counts the properties that "required" doesn't list, as details.
void JsonContents::countOptional(Index schema, Index properties)
{
    std::size_t all = 0, required = 0;
    for (Index at = tree[properties].firstChild; at != 0; at = tree[at].next)
        ++all;
    for (const Index at : tree.childrenOf(schema, JsonWord::required, JsonNode::array))
        required += tree.is(at, JsonNode::string) && tree.find(properties, tree[at].text) != 0 ? 1 : 0;
    report.count(SourceReport::optionality, all - std::min(all, required));
}

// Returns the types that a schema names, in their order. Null among several is left out.
std::vector<JsonWord> JsonContents::typesOf(Index type)
{
    std::vector<JsonWord> types;
    const bool isList = tree.is(type, JsonNode::array);
    for (Index at = isList ? tree[type].firstChild : type; at != 0; at = isList ? tree[at].next : 0) {
        const JsonWord word = tree.wordOf(tree[at].text);
        const bool isKnown = isOneOf(word, {JsonWord::string, JsonWord::number, JsonWord::integer, JsonWord::boolean,
                                            JsonWord::object, JsonWord::array, JsonWord::nullWord});
        if (!tree.is(at, JsonNode::string) || !isKnown)
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
        if (!std::ranges::all_of(own.mapValues, [this](Index value) { return isUnrestricted(value); }))
            documents.note(SourceReport::furtherProperties, frame.node);
        own.mapValues.clear();
    }
    std::vector<JsonWord> wanted = typesOf(own.type);
    const auto texts = static_cast<std::size_t>(std::ranges::count(wanted, JsonWord::string));
    // Both keywords apply, so a constant is the only one of the listed values that is left.
    if (own.constant != 0)
        own.values.assign(1, own.constant);
    for (const Index value : own.values)
        if (tree.is(value, JsonNode::object) || tree.is(value, JsonNode::array)) // no kind has such constants
            documents.note(SourceReport::invalidValue, value);
    // Listed values are constants if the schema may be text. Otherwise its type determines the field.
    if (own.isListed && (texts > 0 || wanted.empty()))
        return join(frame, contentOfValues(frame, own, texts > 0 && texts == wanted.size()), both, frame.node);
    // A schema without "type" gets the type that its keywords apply to, although JSON Schema then allows all other
    // kinds, too.
    if (own.type == 0) {
        if (own.hasProperties || !own.mapValues.empty())
            wanted.push_back(JsonWord::object);
        if (own.hasItems || own.contained != 0)
            wanted.push_back(JsonWord::array);
        if (wanted.empty() && own.format != 0)
            wanted.push_back(JsonWord::string);
    }
    // The text of a reference that leads nowhere, which applies in addition to the types.
    JsonContent before = std::exchange(frame.content, {});
    for (const JsonWord type : wanted)
        if (type != JsonWord::nullWord)
            joinEither(frame, contentOfType(type, frame, own), frame.node);
    if (before.kind != JsonContent::none)
        join(frame, before, both, frame.node);
}

// Returns a schema that is the choice between all; 0 if there are none.
JsonNode::Index JsonContents::choiceOf(const std::vector<Index>& schemas)
{
    if (schemas.size() < 2)
        return schemas.empty() ? 0 : schemas.front();
    return tree.addList(JsonWord::oneOf, schemas, tree[schemas.front()].place);
}

// Returns the content for one of the schema's types, with the keywords that apply to that type only.
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
        content.isImplied = own.type == 0;
        content.items = choiceOf(own.items);
        // Only some of the items match `contains`, so it narrows none of them.
        if (own.contained != 0) {
            const Index any = content.items != 0
                                  ? content.items
                                  : tree.add({.kind = JsonNode::object, .place = tree[own.contained].place});
            content.items = mergedOf(any, std::array{Part{own.contained, maybe}});
        }
        break;
    default:
        const bool isTime = type == JsonWord::string && isTimeFormat(tree.wordOf(own.format));
        content.kind = isTime ? JsonContent::time : JsonContent::text;
        content.isImplied = own.type == 0;
    }
    return content;
}

// Returns the schema that a reference leads to; 0 and a loss if it leads to none, or to one in another language. The
// members of "properties" are schemas, but "properties" itself is not, unless a document that is not a schema uses this
// key for one.
JsonNode::Index JsonContents::referenced(Index child)
{
    const Index target = documents.resolve(child);
    const std::string_view reference = tree.text(tree.target(child));
    // AsyncAPI 3 has schemas beside their format.
    if (const std::string_view format = tree.textOf(target, JsonWord::schemaFormat); !format.empty()) {
        const Index schema = tree.find(target, JsonWord::schema);
        if (schema != 0 && languageOf(lowerAscii(format)) == SchemaLanguage::jsonSchema)
            return schema;
        if (schema != 0) {
            documents.note(SourceReport::typeUnknown, child, CString(reference) + " in " + CString(format));
            return 0;
        }
    }
    if (isAvroType(tree.textOf(target, JsonWord::type))) {
        documents.note(SourceReport::typeUnknown, child, CString(reference) + " in Avro");
        return 0;
    }
    if (tree[target].role != JsonNode::names || tree.find(target, JsonWord::type, JsonNode::string) != 0)
        return target;
    documents.note(SourceReport::unresolvedReference, child, reference);
    return 0;
}

// All schemas of a chain of references are cached, so that a long one is walked once. Each is its own base while the
// chain is walked, which ends a cycle.
JsonNode::Index JsonContents::baseOf(Index schema)
{
    std::vector<Index> chain;
    schema = tree.target(schema);
    while (isPlainReference(schema)) {
        const auto [base, isNew] = bases.try_emplace(schema, schema);
        if (!isNew) {
            schema = base->second;
            break;
        }
        chain.push_back(schema);
        const Index target = tree.target(referenced(tree.find(schema, JsonWord::ref)));
        if (target == 0)
            break;
        schema = target;
    }
    for (const Index at : chain)
        bases[at] = schema;
    return schema;
}

// Returns whether a schema is only a reference, perhaps with remarks. Large objects are not searched, because a schema
// with many keywords is none.
bool JsonContents::isPlainReference(Index schema) const
{
    return tree.find(schema, JsonWord::ref, JsonNode::string) != 0 && !tree[schema].isLarge &&
           (documents.ignoresSiblings(schema) || !restrictsValues(schema));
}

// A schema without keywords allows any value, as `true` does. So does an object that says nothing of further
// properties, so properties of any value are no loss.
bool JsonContents::isUnrestricted(Index schema) const
{
    schema = tree.target(schema);
    return isBoolean(schema, "true") ||
           (tree.is(schema, JsonNode::object) && tree.find(schema, JsonWord::ref) == 0 && !restrictsValues(schema));
}

// Returns whether a schema has keywords other than a reference and remarks.
bool JsonContents::restrictsValues(Index schema) const
{
    for (const Index at : tree.childrenOf(schema))
        if (!isOneOf(tree.keyOf(at),
                     {JsonWord::none, JsonWord::ref, JsonWord::title, JsonWord::description, JsonWord::example,
                      JsonWord::examples, JsonWord::defaultWord, JsonWord::nullable}))
            return true;
    return false;
}

// Returns the type and the format of a schema that is a leaf; nothing for other schemas. Keywords that are only counted
// are ignored, because they don't change the type.
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
        else if (!isOneOf(key, {JsonWord::title, JsonWord::description, JsonWord::none}) &&
                 !kKeywords[static_cast<std::size_t>(key)].detail)
            return std::nullopt;
    }
    const bool isLeaf =
        isOneOf(tree.wordOf(type), {JsonWord::string, JsonWord::number, JsonWord::integer, JsonWord::boolean});
    return isLeaf ? std::optional(std::pair(type, format)) : std::nullopt;
}
