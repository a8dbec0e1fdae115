#pragma once

#include "Base/NameTable.h"
#include "Base/NumberTable.h"
#include "Import/Full/SourceTypes.h"
#include "Import/SourceReport.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <span>
#include <vector>

/// The keys and values that the readers know. Their numbers are the same in each tree's table of names.
// clang-format off
#define JSON_WORDS(WORD) \
    WORD(additionalProperties) WORD(allOf) WORD(anyOf) WORD(array) WORD(boolean) WORD(components) \
    WORD(content) WORD(date) WORD(definitions) WORD(dependencies) WORD(dependentSchemas) WORD(description) \
    WORD(discriminator) WORD(example) WORD(examples) WORD(fields) WORD(format) WORD(headers) WORD(id) \
    WORD(integer) WORD(items) WORD(logicalType) WORD(mapping) WORD(message) WORD(messages) WORD(name) \
    WORD(number) WORD(object) WORD(oneOf) WORD(operationId) WORD(paths) WORD(patternProperties) WORD(payload) \
    WORD(prefixItems) WORD(properties) WORD(propertyName) WORD(requestBody) WORD(required) WORD(responses) \
    WORD(schema) WORD(schemaFormat) WORD(schemas) WORD(string) WORD(symbols) WORD(then) WORD(time) WORD(title) \
    WORD(type) WORD(types) WORD(unevaluatedProperties) WORD(values) WORD(webhooks) WORD(protocol) \
    WORD(request) WORD(response) WORD(doc) WORD(openapi) WORD(swagger) WORD(asyncapi) WORD(channels) \
    WORD(callbacks) WORD(messageId) WORD(publish) WORD(subscribe) WORD(nullable) WORD(minItems) WORD(maxItems) \
    WORD(pattern) WORD(minimum) WORD(maximum) WORD(minLength) WORD(maxLength) WORD(multipleOf) \
    WORD(uniqueItems) WORD(exclusiveMinimum) WORD(exclusiveMaximum) WORD(minProperties) WORD(maxProperties) \
    WORD(additionalItems) WORD(unevaluatedItems) WORD(contains) WORD(propertyNames) WORD(aliases) WORD(order) \
    WORD(traits) WORD(extends) WORD(additionalOperations) WORD(itemSchema) WORD(errors) \
    WORD(contentSchema) WORD(contentEncoding) WORD(contentMediaType) WORD(size) WORD(minContains) WORD(maxContains) \
    WORD(dependentRequired) WORD(precision)

// Words that aren't identifiers in C++, with their texts. Each list makes both the enumerators and the texts, so that
// their orders agree.
#define JSON_OTHER_WORDS(WORD) \
    WORD(ref, "$ref") WORD(dynamicRef, "$dynamicRef") WORD(recursiveRef, "$recursiveRef") \
    WORD(schemaVersion, "$schema") WORD(dollarId, "$id") WORD(self, "$self") WORD(anchor, "$anchor") \
    WORD(dynamicAnchor, "$dynamicAnchor") WORD(defs, "$defs") WORD(ifWord, "if") WORD(elseWord, "else") \
    WORD(enumWord, "enum") WORD(constWord, "const") WORD(defaultWord, "default") WORD(notWord, "not") \
    WORD(namespaceWord, "namespace") WORD(nullWord, "null") WORD(dateTime, "date-time")

/// Words as numbers, so that readers compare numbers and use switches.
enum class JsonWord : std::uint32_t
{
    none, // the empty text, or one that is no JsonWord
#define WORD(name) name,
#define OTHER_WORD(name, text) name,
    JSON_WORDS(WORD) JSON_OTHER_WORDS(OTHER_WORD)
#undef OTHER_WORD
#undef WORD
    wordCount
};
// clang-format on

/// Returns whether `word` is one of `words`.
constexpr bool isOneOf(JsonWord word, std::initializer_list<JsonWord> words)
{
    return std::ranges::find(words, word) != words.end();
}

/// Returns two numbers as one, a key of hash tables.
constexpr std::uint64_t joined(std::uint32_t first, std::uint32_t second)
{
    return static_cast<std::uint64_t>(first) << 32 | second;
}

/// A value of a document. Values are identified by their index; 0 is none. Children are a linked list, so a document
/// needs no allocation for each of its arrays and objects.
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
        alias ///< refers to the node `firstChild`
    };

    /// The role of a value, which depends on the keys around it: "$id" identifies a schema, but not in data, and not as
    /// the name of a property. JsonDocuments sets it.
    enum Role : std::uint8_t
    {
        statement, ///< is a schema, or part of one
        names,     ///< has names as its keys, of properties, patterns or definitions
        data
    };

    Kind kind = none;
    Role role = statement;
    bool isLarge : 1 = false;    ///< an object whose members are in a hash table
    bool isResource : 1 = false; ///< a schema with its own identifier
    bool isLiteral : 1 = false;  ///< a text whose lines are those of the document, from the line after its own on
    Index parent = 0;            ///< 0 for a root, and for nodes that a reader has made
    Index firstChild = 0;        ///< in document order; of an alias its target
    Index next = 0;              ///< the next child of the same parent
    NameTable::Id key = 0;       ///< of a member of an object
    NameTable::Id text = 0;      ///< of a string, number or boolean
    SourcePlace place{};
};

/// The values of JSON and YAML documents as rows of an array, with their places. Neither walking nor freeing it needs
/// recursion. All documents of an import share one tree. Texts are interned, so keys are compared as numbers.
class JsonTree
{
public:
    using Index = JsonNode::Index;

    /// Interns the words first, so that their numbers are those of JsonWord.
    JsonTree();

    const JsonNode& operator[](Index node) const { return nodes[node]; }
    JsonNode& operator[](Index node) { return nodes[node]; }
    /// Returns the number of nodes, with node 0, which is none.
    std::size_t size() const { return nodes.size(); }

    /// The children of a node, in document order. Other nodes may be added while they are visited.
    struct Children
    {
        const JsonTree& tree;
        Index at;

        Children begin() const { return *this; }
        static std::default_sentinel_t end() { return {}; }
        Index operator*() const { return at; }
        void operator++() { at = tree[at].next; }
        bool operator==(std::default_sentinel_t) const { return at == 0; }
    };
    /// Returns the members of an object or the items of an array, aliases as they are. `node` must not be an alias, see
    /// target().
    Children childrenOf(Index node) const { return {*this, nodes[node].firstChild}; }

    /// Returns the node that an alias refers to, else the node itself.
    Index target(Index node) const { return nodes[node].kind == JsonNode::alias ? nodes[node].firstChild : node; }

    /// Returns the member of an object under `key`, aliases followed; 0 if there is none, or if `object` is not an
    /// object.
    Index find(Index object, NameTable::Id key) const;
    Index find(Index object, JsonWord key) const { return find(object, static_cast<NameTable::Id>(key)); }
    Index find(Index object, std::string_view key) const;

    /// The same for a value of kind `kind`; 0 if it is of another kind.
    Index find(Index object, JsonWord key, JsonNode::Kind kind) const;

    /// Returns whether an object has a member under one of `keys`.
    bool hasAny(Index object, std::initializer_list<JsonWord> keys) const
    {
        return std::ranges::any_of(keys, [&](JsonWord key) { return find(object, key) != 0; });
    }

    /// Returns the children of the array or object under `key`; none if there is no such value.
    Children childrenOf(Index object, JsonWord key, JsonNode::Kind kind) const
    {
        return childrenOf(find(object, key, kind));
    }

    /// Returns the text of the string under `key`; empty if there is none.
    std::string_view textOf(Index object, JsonWord key) const;

    /// Returns the key of a node as a word; `none` if it has none, or if it isn't a JsonWord.
    JsonWord keyOf(Index node) const { return wordOf(nodes[node].key); }
    bool is(Index node, JsonNode::Kind kind) const { return nodes[node].kind == kind; }

    /// Returns the text as a word; `none` if it isn't a JsonWord.
    JsonWord wordOf(NameTable::Id text) const
    {
        return text < static_cast<NameTable::Id>(JsonWord::wordCount) ? static_cast<JsonWord>(text) : JsonWord::none;
    }
    /// Return the text or the key of a node; empty if it has none.
    std::string_view text(Index node) const { return names[nodes[node].text]; }
    std::string_view key(Index node) const { return names[nodes[node].key]; }

    /// Adds a node and returns it; it is not yet a child of its parent.
    Index add(const JsonNode& node)
    {
        nodes.push_back(node);
        return static_cast<Index>(nodes.size() - 1);
    }

    /// Adds an array of aliases of `members`, without a parent, under `key`. Readers combine schemas in this way.
    Index addList(JsonWord key, std::span<const Index> members, SourcePlace place);

    /// Returns the JSON pointer of a node (RFC 6901) as a URI fragment, with "#" in front. Takes time linear in the
    /// items before the node, and before its ancestors.
    CString pointerTo(Index node) const;

    /// Puts the members of an object into the hash table; for large objects. Call it once, when they are complete.
    void index(Index object);

    NameTable names;

private:
    std::vector<JsonNode> nodes;
    NumberTable members; // of large objects, by object and key
};

/// Reads one document into the tree and returns its root; 0 if it holds no value. It is YAML if the file name ends with
/// ".yaml" or ".yml", or if neither the name nor the beginning suggests JSON. Of duplicate keys the last one stays, and
/// the others are reported. `document` is the document's number in the report. `withComments` allows comments in JSON.
/// Throws JsonFault, and through `types` SourceRefusal beyond the maximum number of values. The text is copied, so it
/// need not outlive the call.
JsonNode::Index readJsonTree(std::string_view fileName, std::string_view text, JsonTree& tree, const SourceTypes& types,
                             SourceReport& report, std::uint32_t document, bool withComments);
