#include "Import/Json/ApiMessages.h"

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

} // namespace

// Returns what a reference object leads to, else the node itself; 0 if it leads nowhere. Everything but a schema may be
// such a reference.
JsonNode::Index ApiMessages::follow(Index node)
{
    node = tree.target(node);
    for (int i = 0; i < kLongestChain; ++i) {
        const Index reference = tree.find(node, JsonWord::ref, JsonNode::string);
        if (reference == 0)
            return node;
        node = documents.resolve(reference, tree[reference].text);
    }
    return 0;
}

void ApiMessages::readOpenApi(Index root)
{
    readPaths(tree.find(root, JsonWord::paths), {});
    readPaths(tree.find(root, JsonWord::webhooks), {});
}

void ApiMessages::readPaths(Index paths, std::string_view prefix)
{
    if (!tree.is(paths, JsonNode::object))
        return;
    for (Index at = tree[paths].firstChild; at != 0; at = tree[at].next)
        readPathItem(follow(at),
                     prefix.empty() ? CString(tree.key(at)) : CString(prefix) + "_" + CString(tree.key(at)));
}

void ApiMessages::readPathItem(Index item, std::string_view name)
{
    if (!tree.is(item, JsonNode::object) || !isNew(item))
        return;
    for (Index at = tree[item].firstChild; at != 0; at = tree[at].next)
        if (std::ranges::find(kMethods, tree.key(at)) != std::end(kMethods))
            readOperation(follow(at), CString(tree.key(at)) + "_" + CString(name));
}

void ApiMessages::readOperation(Index operation, std::string_view name)
{
    if (!tree.is(operation, JsonNode::object) || !isNew(operation))
        return;
    const std::string_view id = tree.textOf(operation, JsonWord::operationId);
    const CString called = id.empty() ? nameOf(name) : CString(id);
    readBody(follow(tree.find(operation, JsonWord::requestBody)), called + "Request");
    const Index responses = tree.find(operation, JsonWord::responses, JsonNode::object);
    for (Index at = tree[responses].firstChild; at != 0; at = tree[at].next)
        readBody(follow(at), called + "Response");
    const Index callbacks = tree.find(operation, JsonWord::callbacks, JsonNode::object);
    if (depth == kMaxCallbacks)
        return;
    ++depth;
    for (Index at = tree[callbacks].firstChild; at != 0; at = tree[at].next)
        readPaths(follow(at), called + "_" + CString(tree.key(at)));
    --depth;
}

// A body has one schema for each media type.
void ApiMessages::readBody(Index body, const CString& name)
{
    const Index contents = tree.find(body, JsonWord::content, JsonNode::object);
    for (Index at = tree[contents].firstChild; at != 0; at = tree[at].next) {
        const Index schema = tree.find(tree.target(at), JsonWord::schema);
        if (schema != 0 && isNew(schema))
            schemas.addBody(schema, name);
    }
}

void ApiMessages::readAsyncApi(Index root)
{
    // Components are read first, so that their messages are named after their keys.
    const Index components = tree.find(root, JsonWord::components);
    const Index messages = tree.find(components, JsonWord::messages, JsonNode::object);
    for (Index at = tree[messages].firstChild; at != 0; at = tree[at].next)
        readMessage(follow(at), tree.key(at));
    for (const Index holder : {root, components}) {
        const Index channels = tree.find(holder, JsonWord::channels, JsonNode::object);
        for (Index at = tree[channels].firstChild; at != 0; at = tree[at].next)
            readChannel(follow(at), tree.key(at));
    }
}

// In version 2 the operations of a channel hold its messages, several as alternatives. In version 3 the channel holds
// them.
void ApiMessages::readChannel(Index channel, std::string_view name)
{
    const CString called = nameOf(name);
    for (const JsonWord operation : {JsonWord::publish, JsonWord::subscribe}) {
        const Index holder = tree.find(channel, operation);
        const Index message = follow(tree.find(holder, JsonWord::message));
        const std::string_view id = tree.textOf(holder, JsonWord::operationId);
        const CString own = id.empty() ? called : CString(id);
        const Index several = tree.find(message, JsonWord::oneOf, JsonNode::array);
        for (Index at = tree[several].firstChild; at != 0; at = tree[at].next)
            readMessage(follow(at), own);
        if (several == 0)
            readMessage(message, own);
    }
    const Index messages = tree.find(channel, JsonWord::messages, JsonNode::object);
    for (Index at = tree[messages].firstChild; at != 0; at = tree[at].next)
        readMessage(follow(at), tree.key(at));
}

// Adds a message. Its name is the `name`, else the `messageId`, else its key or channel.
void ApiMessages::readMessage(Index message, std::string_view name)
{
    if (!tree.is(message, JsonNode::object) || !isNew(message))
        return;
    for (const JsonWord word : {JsonWord::messageId, JsonWord::name})
        if (const std::string_view said = tree.textOf(message, word); !said.empty())
            name = said;
    readPayload(message, CString(name));
    if (const Index headers = tree.find(message, JsonWord::headers); headers != 0)
        schemas.addBody(headers, CString(name) + "Headers");
}

void ApiMessages::readPayload(Index message, const CString& name)
{
    Index payload = tree.find(message, JsonWord::payload);
    CString format = lowerAscii(tree.textOf(message, JsonWord::schemaFormat));
    const Index inner = tree.find(payload, JsonWord::schema);
    // In version 3 a payload may hold its schema beside the format of it.
    if (const Index says = tree.find(payload, JsonWord::schemaFormat, JsonNode::string); says != 0 && inner != 0) {
        format = lowerAscii(tree.text(says));
        payload = inner;
    }
    if (payload == 0)
        return;
    if (format.find("avro") != format.npos) {
        avro.addCandidate(follow(payload), name);
    } else if (format.empty() || format.find("asyncapi") != format.npos || format.find("schema+") != format.npos ||
               format.find("openapi") != format.npos) {
        schemas.addBody(payload, name);
    } else {
        documents.note(SourceReport::moduleUnreadable, payload, format);
    }
}
