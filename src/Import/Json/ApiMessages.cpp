#include "Import/Json/ApiMessages.h"

#include "Import/Json/JsonKind.h"

#include <algorithm>

namespace {

using Index = JsonNode::Index;

constexpr int kLongestChain = 100; // of references; guards against cycles
constexpr int kMaxCallbacks = 10;  // callbacks nested in each other
constexpr std::string_view kMethods[] = {"get", "put", "post", "delete", "options", "head", "patch", "trace", "query"};

// Returns a name made of the letters and digits of a path or channel, for an operation or message without one.
CString nameOf(std::string_view words)
{
    CString name;
    for (const char c : words) {
        const bool isPart = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                            static_cast<unsigned char>(c) >= 0x80;
        if (isPart)
            name += c;
        else if (!name.empty() && name.back() != '_')
            name += '_';
    }
    return CString(trimmed(name, "_"));
}

bool isFileNamed(std::string_view reference, std::initializer_list<std::string_view> endings)
{
    reference = reference.substr(0, reference.find('#'));
    return std::ranges::any_of(endings, [&](std::string_view ending) { return endsWithAscii(reference, ending); });
}

// Returns whether a schema is a reference to a file of XML Schema.
bool refersToXml(const JsonTree& tree, Index schema)
{
    return isFileNamed(tree.textOf(tree.target(schema), JsonWord::ref), {".xsd"});
}

} // namespace

// Returns the target of a reference object, else the node itself; 0 if the reference leads nowhere. Any part except a
// schema may be a reference object.
JsonNode::Index ApiMessages::follow(Index node)
{
    node = tree.target(node);
    for (int i = 0; i < kLongestChain; ++i) {
        const Index reference = tree.find(node, JsonWord::ref, JsonNode::string);
        if (reference == 0)
            return node;
        node = documents.resolve(reference, tree[reference].text);
    }
    documents.note(SourceReport::cutShort, node, "more than " + std::to_string(kLongestChain) + " references in a row");
    return 0;
}

// Returns a part of the description, references followed; 0 if there is none. A part that is not an object is reported,
// unless it is empty or an extension.
JsonNode::Index ApiMessages::partOf(Index node)
{
    const Index part = follow(node);
    if (part == 0 || tree.is(part, JsonNode::object))
        return part;
    if (!tree.is(part, JsonNode::null) && !tree.key(node).starts_with("x-"))
        documents.note(SourceReport::invalidValue, part, tree.key(node));
    return 0;
}

// Returns the members of the part under `key`.
JsonTree::Children ApiMessages::membersOf(Index holder, JsonWord key)
{
    return tree.childrenOf(partOf(tree.find(holder, key)));
}

void ApiMessages::readOpenApi(Index root)
{
    readPaths(partOf(tree.find(root, JsonWord::paths)), {});
    readPaths(partOf(tree.find(root, JsonWord::webhooks)), {});
}

void ApiMessages::readPaths(Index paths, std::string_view prefix)
{
    for (const Index at : tree.childrenOf(paths))
        readPathItem(partOf(at),
                     prefix.empty() ? CString(tree.key(at)) : CString(prefix) + "_" + CString(tree.key(at)));
}

void ApiMessages::readPathItem(Index item, std::string_view name)
{
    if (!isNew(item))
        return;
    for (const Index at : tree.childrenOf(item))
        if (std::ranges::find(kMethods, tree.key(at)) != std::end(kMethods))
            readOperation(partOf(at), CString(tree.key(at)) + "_" + CString(name));
}

void ApiMessages::readOperation(Index operation, std::string_view name)
{
    if (!isNew(operation))
        return;
    const std::string_view id = tree.textOf(operation, JsonWord::operationId);
    const CString called = id.empty() ? nameOf(name) : CString(id);
    readBody(partOf(tree.find(operation, JsonWord::requestBody)), called + "Request");
    for (const Index at : membersOf(operation, JsonWord::responses))
        readBody(partOf(at), called + "Response");
    const Index callbacks = partOf(tree.find(operation, JsonWord::callbacks));
    if (callbacks != 0 && depth == kMaxCallbacks) {
        documents.note(SourceReport::cutShort, callbacks,
                       "more than " + std::to_string(kMaxCallbacks) + " callbacks inside each other");
        return;
    }
    ++depth;
    for (const Index at : tree.childrenOf(callbacks))
        readPaths(partOf(at), called + "_" + CString(tree.key(at)));
    --depth;
}

// A body has one schema for each media type.
void ApiMessages::readBody(Index body, const CString& name)
{
    for (const Index at : membersOf(body, JsonWord::content)) {
        const Index schema = tree.find(partOf(at), JsonWord::schema);
        if (schema == 0 || !isNew(schema))
            continue;
        if (refersToXml(tree, schema))
            readXml(schema, {}, name, schemas.querySource());
        else
            schemas.addBody(schema, name);
    }
}

void ApiMessages::readAsyncApi(Index root)
{
    // Components are read first, so that their messages are named after their keys.
    const Index components = partOf(tree.find(root, JsonWord::components));
    for (const Index at : membersOf(components, JsonWord::schemas))
        readComponent(at);
    for (const Index at : membersOf(components, JsonWord::messages))
        readMessage(partOf(at), tree.key(at));
    for (const Index holder : {root, components})
        for (const Index at : membersOf(holder, JsonWord::channels))
            readChannel(partOf(at), tree.key(at));
}

// In version 2 the operations of a channel hold its messages, several as alternatives. In version 3 the channel holds
// them.
void ApiMessages::readChannel(Index channel, std::string_view name)
{
    const CString called = nameOf(name);
    for (const JsonWord operation : {JsonWord::publish, JsonWord::subscribe}) {
        const Index holder = partOf(tree.find(channel, operation));
        const Index message = partOf(tree.find(holder, JsonWord::message));
        const std::string_view id = tree.textOf(holder, JsonWord::operationId);
        const CString own = id.empty() ? called : CString(id);
        const Index several = tree.find(message, JsonWord::oneOf, JsonNode::array);
        for (const Index at : tree.childrenOf(several))
            readMessage(partOf(at), own);
        if (several == 0)
            readMessage(message, own);
    }
    for (const Index at : membersOf(channel, JsonWord::messages))
        readMessage(partOf(at), tree.key(at));
}

// Adds a message. Its name is the `name`, else the `messageId`, else its key or channel.
void ApiMessages::readMessage(Index message, std::string_view name)
{
    if (message == 0 || !isNew(message))
        return;
    for (const JsonWord word : {JsonWord::messageId, JsonWord::name})
        if (const std::string_view said = tree.textOf(message, word); !said.empty())
            name = said;
    std::string_view format = tree.textOf(message, JsonWord::schemaFormat);
    for (const Index at : tree.childrenOf(message, JsonWord::traits, JsonNode::array))
        if (format.empty()) // of version 2, where a trait may give it
            format = tree.textOf(follow(at), JsonWord::schemaFormat);
    readSchema(tree.find(message, JsonWord::payload), lowerAscii(format), CString(name), true);
    readSchema(headersOf(message), {}, CString(name) + "Headers", false);
}

// Returns the headers of a message with those of its traits, which come first, so that the message's own hold; 0 if
// there are none.
JsonNode::Index ApiMessages::headersOf(Index message)
{
    std::vector<Index> found;
    const auto add = [&](Index holder) {
        if (const Index headers = tree.find(holder, JsonWord::headers); headers != 0)
            found.push_back(headers);
    };
    for (const Index at : tree.childrenOf(message, JsonWord::traits, JsonNode::array))
        add(follow(at));
    add(message);
    if (found.size() < 2)
        return found.empty() ? 0 : found.front();
    std::vector<Index> parts;
    for (const Index headers : found) {
        CString format;
        const Index schema = withoutFormat(headers, format);
        if (languageOf(format) == SchemaLanguage::jsonSchema)
            parts.push_back(schema);
        else
            documents.note(SourceReport::moduleUnreadable, schema, format);
    }
    const Index all = tree.add(JsonNode::object, 0, 0, JsonWord::none, found.back());
    tree.addList(all, JsonWord::allOf, parts, found.back());
    return all;
}

// Returns the schema that a node holds beside its format, references followed, and sets `format`. Returns the node
// itself if it holds none. Only version 3 has such schemas.
JsonNode::Index ApiMessages::withoutFormat(Index node, CString& format)
{
    const Index target = follow(node);
    const Index says = tree.find(target, JsonWord::schemaFormat, JsonNode::string);
    const Index schema = tree.find(target, JsonWord::schema);
    if (says == 0 || schema == 0)
        return node;
    format = lowerAscii(tree.text(says));
    return schema;
}

// Adds a schema of a message. An empty `format` is that of the description itself. A payload always becomes a record.
void ApiMessages::readSchema(Index schema, CString format, const CString& name, bool isPayload)
{
    if (schema == 0)
        return;
    const auto before = static_cast<SourceTypes::Index>(types.candidates.size());
    const auto isXml = [&] { return languageOf(format) == SchemaLanguage::xmlSchema || refersToXml(tree, schema); };
    if (languageOf(format) != SchemaLanguage::foreign && !isXml())
        schema = withoutFormat(schema, format);
    if (isXml())
        return readXml(schema, format, name, schemas.querySource());
    if (format.empty() && isAvroType(tree.textOf(follow(schema), JsonWord::type)))
        format = "avro";
    if (languageOf(format) == SchemaLanguage::avro) {
        const Index target = follow(schema);
        avro.addCandidate(target, schemas.toModelName(name, schema));
        schemas.leaveOut(target); // version 2 doesn't name the language of components
    } else if (languageOf(format) == SchemaLanguage::jsonSchema) {
        schemas.addBody(schema, name, isPayload);
    } else {
        documents.note(SourceReport::moduleUnreadable, schema, format);
    }
    for (SourceTypes::Index added = before; isPayload && added < types.candidates.size(); ++added)
        types.recordOf(added);
}

// Adds a schema in XML Schema: a text, or a reference to one or to a file. A file in JSON or YAML holds parts of the
// description.
void ApiMessages::readXml(Index schema, const CString& format, const CString& name, Index source)
{
    Index node = tree.target(schema);
    for (int i = 0; i < kLongestChain && node != 0; ++i) {
        schemas.leaveOut(node); // see readSchema()
        const Index reference = tree.find(node, JsonWord::ref, JsonNode::string);
        const bool isFile = !tree.text(reference).empty() && !tree.text(reference).starts_with('#') &&
                            !isFileNamed(tree.text(reference), {".json", ".yaml", ".yml"});
        if (isFile || tree.is(node, JsonNode::string)) {
            const Index text = isFile ? reference : node;
            return xml.add(
                {tree.text(text), isFile, tree[text].isLiteral, tree.placeOf(text), documents.queryFolder(text), name},
                source);
        }
        if (reference == 0)
            return documents.note(SourceReport::moduleUnreadable, schema, format);
        node = documents.resolve(reference, tree[reference].text, true);
    }
    if (node != 0)
        documents.note(SourceReport::cutShort, node,
                       "more than " + std::to_string(kLongestChain) + " references in a row");
}

// Declares a schema of the components that holds its format.
void ApiMessages::readComponent(Index node)
{
    CString format;
    const Index schema = withoutFormat(node, format);
    if (languageOf(format) == SchemaLanguage::avro)
        avro.declareAll(follow(schema));
    else if (languageOf(format) == SchemaLanguage::xmlSchema)
        readXml(schema, format, CString(tree.key(node)), SourceTypes::kNone);
    else if (languageOf(format) == SchemaLanguage::foreign)
        documents.note(SourceReport::moduleUnreadable, schema, format);
    else if (schema != node && schemas.isWanted(tree.target(schema)))
        schemas.shapeOf(schema, schemas.toModelName(tree.key(node), node));
}
