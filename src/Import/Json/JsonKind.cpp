#include "Import/Json/JsonKind.h"

#include "Import/Json/JsonScanner.h"
#include "Import/Json/JsonTree.h"

#include <algorithm>

// Messages in JSON may have the same keys as schemas, so a key only decides if its value has the kind that the language
// requires. Otherwise a message would be read as a schema and lose most of its fields.
namespace {

using Index = JsonNode::Index;

// Reads the beginning of a document into an empty tree, so that the root is the first node. Returns false if a fault
// ends the document early, such as the end of `start`. The importer will report other faults.
bool readStart(std::string_view start, JsonTree& tree)
{
    SourceReport report;
    try {
        readJsonTree({}, start, tree, SourceTypes(""), report, 0, true);
        return true;
    } catch (const JsonFault&) {
        return false;
    } catch (const SourceRefusal&) {
        return false;
    }
}

// With `mayBePart`, the components of a description are enough.
bool isApi(const JsonTree& tree, Index object, bool mayBePart)
{
    bool isFound = tree.hasAny(object, {JsonWord::openapi, JsonWord::asyncapi, JsonWord::swagger});
    if (mayBePart)
        for (const Index at : tree.childrenOf(object, JsonWord::components, JsonNode::object))
            isFound |= tree.is(at, JsonNode::object) &&
                       isOneOf(tree.key(at), {"callbacks", "examples", "headers", "links", "parameters", "pathItems",
                                              "requestBodies", "responses", "schemas", "securitySchemes"});
    return isFound;
}

bool isAvro(const JsonTree& tree, Index object)
{
    const bool isProtocol = !tree.textOf(object, JsonWord::protocol).empty();
    return isAvroType(tree.textOf(object, JsonWord::type)) ||
           (isProtocol && (tree.find(object, JsonWord::types, JsonNode::array) != 0 ||
                           tree.find(object, JsonWord::messages, JsonNode::object) != 0));
}

bool isSchema(const JsonTree& tree, Index node)
{
    using enum JsonWord;
    const auto holds = [&](JsonNode::Kind kind, std::initializer_list<JsonWord> keys) {
        return std::ranges::any_of(keys, [&](JsonWord key) { return tree.find(node, key, kind) != 0; });
    };
    // Identifiers and references of schemas are URIs, and contain one of these characters. In a message they may be any
    // words.
    const auto isUri = [&](JsonWord key) { return tree.textOf(node, key).find_first_of("#/.:") != CString::npos; };
    const std::string_view kind = tree.textOf(node, type);
    if (isOneOf(kind, {"object", "array", "string", "number", "integer", "boolean"}) ||
        tree.textOf(node, schemaVersion).find("json-schema.org") != CString::npos ||
        holds(JsonNode::object, {defs, definitions}) || holds(JsonNode::array, {allOf, oneOf, anyOf}) ||
        isUri(dollarId) || isUri(ref) || isUri(dynamicRef))
        return true;
    bool haveSchemas = true; // the members of "properties", which are objects or booleans
    for (const Index at : tree.childrenOf(node, properties, JsonNode::object))
        haveSchemas &= tree.is(at, JsonNode::object) || tree.is(at, JsonNode::boolean);
    return kind.empty() && haveSchemas && holds(JsonNode::object, {properties, patternProperties});
}

} // namespace

std::string_view importerOfJson(std::string_view start)
{
    JsonTree tree;
    const std::string_view text = trimmed(start);
    // If the keys are sorted, "openapi" follows components, which may be large. Whole JSON without it may be a message.
    const bool mayBePart = !readStart(start, tree) || !beginsLikeJson(text);
    // A file may be a list of Avro's named types, so the keys of a list are those of its items.
    const auto isAny = [&](auto test) {
        Index at = tree.size() > 1 ? 1 : 0;
        for (at = tree.is(at, JsonNode::array) ? tree[at].firstChild : at; at != 0; at = tree[at].next)
            if (test(at))
                return true;
        return false;
    };
    if (isAny([&](Index object) { return isApi(tree, object, mayBePart); }))
        return "openapi";
    if (isAny([&](Index object) { return isAvro(tree, object); }))
        return "avro";
    if (isAny([&](Index object) { return isSchema(tree, object); }))
        return "jsonschema";
    return text.starts_with('{') || text.starts_with('[') ? "json" : "";
}

bool isApiKey(std::string_view key)
{
    // clang-format off
    return isOneOf(key, {
        "$ref", "additionalOperations", "address", "bindings", "callbacks", "content", "contentType", "correlationId",
        "delete", "deprecated", "description", "encoding", "example", "examples", "externalDocs", "get", "head",
        "headers", "itemEncoding", "itemSchema", "links", "message", "messageId", "messages", "name", "oneOf",
        "operationId", "options", "parameters", "patch", "payload", "post", "prefixEncoding", "publish", "put", "query",
        "requestBody", "required", "responses", "schema", "schemaFormat", "security", "servers", "subscribe",
        "summary", "tags", "title", "trace", "traits"});
    // clang-format on
}

bool isAvroType(std::string_view type)
{
    return isOneOf(type, {"record", "error", "enum", "fixed"});
}

SchemaLanguage languageOf(std::string_view format)
{
    if (format.find("avro") != format.npos)
        return SchemaLanguage::avro;
    // There is no registered name: application/xml, application/xsd+xml and others are in use.
    if (format.find("xml") != format.npos || format.find("xsd") != format.npos)
        return SchemaLanguage::xmlSchema;
    for (const char* const part : {"asyncapi", "schema+", "openapi"})
        if (format.find(part) != format.npos)
            return SchemaLanguage::jsonSchema;
    return format.empty() ? SchemaLanguage::jsonSchema : SchemaLanguage::foreign;
}
