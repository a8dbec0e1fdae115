#pragma once

#include "Base/NameTable.h"
#include "Import/Full/SourceTypes.h"
#include "Import/SourceReport.h"

#include <unordered_map>
#include <vector>

/// The keys and words that the readings know, by number in every tree's table of names.
// clang-format off
#define JSON_WORDS(WORD) \
    WORD(additionalProperties) WORD(allOf) WORD(anyOf) WORD(array) WORD(boolean) WORD(components) WORD(content) \
    WORD(contentMediaType) WORD(date) WORD(definitions) WORD(dependencies) WORD(dependentSchemas) \
    WORD(description) WORD(discriminator) WORD(example) WORD(examples) WORD(fields) WORD(format) WORD(headers) \
    WORD(id) WORD(integer) WORD(items) WORD(logicalType) WORD(map) WORD(mapping) WORD(message) WORD(messages) \
    WORD(name) WORD(number) WORD(object) WORD(oneOf) WORD(operationId) WORD(operations) WORD(parameters) \
    WORD(paths) WORD(patternProperties) WORD(payload) WORD(prefixItems) WORD(properties) WORD(propertyName) \
    WORD(record) WORD(requestBody) WORD(requestBodies) WORD(required) WORD(responses) WORD(schema) \
    WORD(schemaFormat) WORD(schemas) WORD(string) WORD(symbols) WORD(then) WORD(time) WORD(title) WORD(type) \
    WORD(types) WORD(unevaluatedProperties) WORD(value) WORD(values) WORD(webhooks) WORD(fixed) WORD(error) \
    WORD(protocol) WORD(request) WORD(response) WORD(errors) WORD(bytes) WORD(doc) WORD(openapi) WORD(swagger) \
    WORD(asyncapi) WORD(channels) WORD(callbacks) WORD(messageId) WORD(publish) WORD(subscribe) WORD(nullable) \
    WORD(minItems) WORD(maxItems) WORD(pattern) WORD(minimum) WORD(maximum) WORD(minLength) WORD(maxLength) \
    WORD(multipleOf) WORD(uniqueItems) WORD(exclusiveMinimum) WORD(exclusiveMaximum) WORD(minProperties) \
    WORD(maxProperties) WORD(contains) WORD(propertyNames) WORD(aliases) WORD(order) WORD(info)
// clang-format on

enum class JsonWord : std::uint32_t
{
    none, // the empty text
#define WORD(name) name,
    JSON_WORDS(WORD)
#undef WORD
    // Words that C++ can't name so.
    ref,
    dynamicRef,
    recursiveRef,
    schemaVersion,
    dollarId,
    anchor,
    dynamicAnchor,
    defs,
    ifWord,
    elseWord,
    enumWord,
    constWord,
    defaultWord,
    notWord,
    namespaceWord,
    nullWord,
    dateTime,
    wordCount
};

/// A value of a document. Values are known by their index; 0 is none.
struct JsonNode
{
    using Index = std::uint32_t;

    enum Kind : std::uint8_t
    {
        none,
        null,
        boolean,
        number,
        string,
        array,
        object,
        alias ///< stands for `firstChild`
    };

    Kind kind = none;
    bool isLarge = false;    ///< an object whose members are found by a table
    bool isResource = false; ///< a schema with an identifier of its own
    Index parent = 0;        ///< of an alias made for a reading: 0
    Index firstChild = 0;    ///< in the order of the document
    Index next = 0;          ///< the next of the same parent
    NameTable::Id key = 0;   ///< of an object's member
    NameTable::Id text = 0;  ///< of a string, number or boolean
    std::uint32_t document = 0;
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

/// The values of JSON and YAML documents, flat, with the places where they stand. No walk over it needs recursion, and
/// freeing it neither.
class JsonTree
{
public:
    using Index = JsonNode::Index;

    JsonTree();

    const JsonNode& operator[](Index node) const { return nodes[node]; }
    JsonNode& operator[](Index node) { return nodes[node]; }
    std::size_t size() const { return nodes.size(); }

    /// What an alias stands for, else the node itself.
    Index target(Index node) const { return nodes[node].kind == JsonNode::alias ? nodes[node].firstChild : node; }

    /// The member of an object under `key`, aliases followed; 0 if there is none, or no object.
    Index find(Index object, NameTable::Id key) const;
    Index find(Index object, JsonWord key) const { return find(object, static_cast<NameTable::Id>(key)); }
    Index find(Index object, std::string_view key) const;

    /// The same when the value is of a kind; 0 for any other.
    Index find(Index object, JsonWord key, JsonNode::Kind kind) const;

    /// The text of a string under `key`; "" if there is none.
    std::string_view textOf(Index object, JsonWord key) const;

    JsonWord keyOf(Index node) const { return wordOf(nodes[node].key); }
    bool is(Index node, JsonNode::Kind kind) const { return nodes[node].kind == kind; }

    /// The text as a word; one that no reading knows is `none`.
    JsonWord wordOf(NameTable::Id text) const
    {
        return text < static_cast<NameTable::Id>(JsonWord::wordCount) ? static_cast<JsonWord>(text) : JsonWord::none;
    }
    std::string_view text(Index node) const { return names[nodes[node].text]; }
    std::string_view key(Index node) const { return names[nodes[node].key]; }

    /// A new node behind the last child of `parent`, `last` (0 if it has none); `parent` 0: on its own. It keeps the
    /// place of `place`.
    Index add(JsonNode::Kind kind, Index parent, Index last, NameTable::Id key, Index place);

    /// The JSON pointer of a node (RFC 6901), "#" in front.
    CString pointerTo(Index node) const;

    /// Puts all members of an object into the table by which they are found.
    void index(Index object);

    SourcePlace placeOf(Index node) const { return {nodes[node].document, nodes[node].line, nodes[node].column}; }

    NameTable names;

private:
    std::vector<JsonNode> nodes;
    std::unordered_map<std::uint64_t, Index> members; // of large objects
};

/// Fills a tree with one document's values as they are read. Of two members with one key the last one stays, a loss.
class JsonBuilder
{
public:
    using Index = JsonNode::Index;

    /// The report has the document as `document`. More values than the bound are refused by `types`.
    JsonBuilder(JsonTree& tree, const SourceTypes& types, SourceReport& report, std::uint32_t document);

    void key(std::string_view text) { nextKey = tree.names.intern(text); }

    /// Adds a value; an array or object is open until end().
    Index add(JsonNode::Kind kind, std::string_view text, std::uint32_t line, std::uint32_t column);
    void addAlias(Index target, std::uint32_t line, std::uint32_t column);
    void end();

    /// Takes a member out of the object that is open.
    void drop(Index member);

    /// Adds the members of `source` to the object that is open, but those whose keys it has.
    void merge(Index source);

    bool isOpen(Index node) const;
    std::size_t depth() const { return open.size(); }

    /// The document's value; 0 when there is none.
    Index root() const { return first; }

private:
    struct Level
    {
        Index node;
        Index last = 0;
        std::size_t count = 0;
    };

    void dropDuplicates(const Level& level);
    void countMerged();

    JsonTree& tree;
    const SourceTypes& types;
    SourceReport& report;
    const std::uint32_t document;
    std::vector<Level> open;
    NameTable::Id nextKey = 0;
    Index first = 0;
    std::size_t merged = 0; // looked at while merging
};

/// Reads one document into the tree and returns its value: YAML if its name ends so or it begins like no JSON. Throws
/// JsonFault.
JsonNode::Index readJsonTree(std::string_view fileName, std::string_view text, JsonTree& tree, JsonBuilder& builder);
