// Reads API descriptions.
#include "Import/Json/AvroTypes.h"
#include "Import/Json/JsonKind.h"
#include "Import/Json/JsonMessage.h"
#include "Import/Schema/Full/MessageSchemas.h"

#include <algorithm>

// Walks over the parts of a description that may hold messages. Types are made for messages first, then for the
// remaining schemas of the components, so that candidates for main types are messages if there are any. Components are
// named before, because messages may refer to them through other files.
namespace {

using Index = JsonNode::Index;

constexpr int kLongestChain = 100; // of references; guards against cycles
constexpr int kMaxCallbacks = 10;  // callbacks nested in each other
constexpr const char* kUnknown = "it is neither an OpenAPI nor an AsyncAPI document";
// The keys of a path that hold operations; others hold parameters, servers and texts.
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

// Finds the messages of an API description and adds them as candidates for main types: the bodies of operations, the
// payloads and headers of channels. An item that several places refer to is read once.
class ApiMessages
{
public:
    explicit ApiMessages(JsonSources& sources) :
        sources(sources), documents(sources.documents), tree(documents.tree), schemas(sources.schemas),
        avro(documents, schemas, sources.types, sources.report)
    {}

    void read()
    {
        std::vector<Index> all(sources.roots.begin(), sources.roots.end());
        std::erase(all, 0);
        for (const Index root : all)
            if (tree.find(root, JsonWord::swagger) != 0)
                documents.refuse(root, "it is Swagger 2.0; convert it to OpenAPI 3 first");
        std::stable_partition(all.begin(), all.end(), [&](Index root) { return isDescription(root); });
        if (!isDescription(all.front()))
            documents.refuse(all.front(), kUnknown);
        // A "$ref" replaces its siblings in OpenAPI 3.0, and in AsyncAPI, whose schemas are of draft 7. OpenAPI 3.1
        // follows JSON Schema 2020-12. For parts, the version of the first description counts.
        for (const Index root : all) {
            checkVersion(root);
            const std::string_view version = openApiVersionOf(isDescription(root) ? root : all.front());
            documents.setIgnoresSiblings(root, version.empty() || version.starts_with("3.0"));
        }
        for (const Index root : all)
            schemas.nameReferred(componentsOf(root));
        for (Index source = 0; source < sources.roots.size(); ++source) {
            Index& root = sources.roots[source];
            if (!isDescription(root))
                root = 0;
            if (root == 0)
                continue;
            schemas.setSource(source);
            const std::size_t before = countMessages();
            if (openApiVersionOf(root).empty())
                readAsyncApi(root);
            else
                readOpenApi(root);
            // Without messages, the schemas are the candidates for the main type.
            schemas.declareMembers(componentsOf(root), countMessages() == before || sources.areRequested);
        }
        if (sources.areRequested)
            avro.addNamedTypes();
        schemas.finish();
        avro.finish();
        // A file without a version is only accepted as a part of another one. Whether it is one is known when all are
        // read.
        for (const std::size_t top : documents.findTops(all))
            if (!isDescription(all[top]))
                documents.refuse(all[top], kUnknown);
    }

private:
    std::string_view openApiVersionOf(Index root) const { return tree.text(tree.find(root, JsonWord::openapi)); }

    // Returns whether a document describes an API, instead of being a part of a description.
    bool isDescription(Index root) const
    {
        return !openApiVersionOf(root).empty() || tree.find(root, JsonWord::asyncapi) != 0;
    }

    // Reports a version that may have unknown parts.
    void checkVersion(Index root)
    {
        const auto check = [&](JsonWord key, std::initializer_list<std::string_view> known) {
            const Index said = tree.find(root, key);
            const std::string_view version = tree.text(said);
            const auto begins = [version](std::string_view start) { return version.starts_with(start); };
            if (said != 0 && std::ranges::none_of(known, begins))
                documents.note(SourceReport::invalidValue, said, "unknown version " + CString(version));
        };
        check(JsonWord::openapi, {"3.0", "3.1", "3.2"});
        check(JsonWord::asyncapi, {"2.", "3."});
    }

    Index componentsOf(Index root) const { return tree.find(tree.find(root, JsonWord::components), JsonWord::schemas); }

    std::size_t countMessages() const { return sources.types.candidates.size() + sources.xml.countMessages(); }

    // Adds the bodies of an OpenAPI document's operations, with those of webhooks and callbacks.
    void readOpenApi(Index root)
    {
        readPaths(partOf(tree.find(root, JsonWord::paths)), {});
        for (const Index at : membersOf(root, JsonWord::webhooks))
            readPath(at, {});
    }

    // Adds the messages of an AsyncAPI document's channels and components.
    void readAsyncApi(Index root)
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

    // Returns whether a node has not been read before: several places may refer to it, and references may form a cycle.
    bool isNew(Index node) { return visited.insert(node).second; }

    // Returns the target of a reference object, else the node itself; 0 if the reference leads nowhere. Any part except
    // a schema may be a reference object.
    Index follow(Index node)
    {
        node = tree.target(node);
        for (int i = 0; i < kLongestChain; ++i) {
            const Index reference = tree.find(node, JsonWord::ref, JsonNode::string);
            if (reference == 0)
                return node;
            node = documents.resolve(reference);
        }
        documents.note(SourceReport::cutShort, node,
                       "more than " + std::to_string(kLongestChain) + " references in a row");
        return 0;
    }

    // Returns a part of the description, references followed; 0 if there is none. A part that is not an object is
    // reported, unless it is empty or an extension.
    Index partOf(Index node)
    {
        const Index part = follow(node);
        if (part == 0 || tree.is(part, JsonNode::object))
            return part;
        if (!tree.is(part, JsonNode::null) && !isExtension(node))
            documents.note(SourceReport::invalidValue, part, tree.key(node));
        return 0;
    }

    // Returns whether a member of an object is an extension, if the other keys of the object are not names.
    bool isExtension(Index node) const { return tree.key(node).starts_with("x-"); }

    // Returns the members of the part under `key`.
    JsonTree::Children membersOf(Index holder, JsonWord key) { return tree.childrenOf(partOf(tree.find(holder, key))); }

    // Bounds names that are made for each of many operations and may begin with the same long text.
    CString spend(CString name)
    {
        sources.types.spend(name.size());
        return name;
    }

    // Reports the keys of a part that no version has.
    void checkKeys(Index part)
    {
        for (const Index at : tree.childrenOf(part))
            if (!isApiKey(tree.key(at)) && !isExtension(at))
                documents.note(SourceReport::unknownStatement, at, tree.key(at));
    }

    // `prefix` begins the names of operations without one.
    void readPaths(Index paths, const CString& prefix)
    {
        for (const Index path : tree.childrenOf(paths))
            if (!isExtension(path))
                readPath(path, prefix);
    }

    // A path may have operations of its own in addition to those that it refers to.
    void readPath(Index path, const CString& prefix)
    {
        for (const Index item : {tree.target(path), partOf(path)}) {
            if (!isNew(item))
                continue;
            checkKeys(item);
            const auto read = [&](Index at) {
                readOperation(partOf(at), spend(CString(tree.key(at)) + "_" + prefix + CString(tree.key(path))));
            };
            for (const Index at : tree.childrenOf(item))
                if (std::ranges::find(kMethods, tree.key(at)) != std::end(kMethods))
                    read(at);
            for (const Index at : membersOf(item, JsonWord::additionalOperations))
                read(at);
        }
    }

    void readOperation(Index operation, std::string_view name)
    {
        if (!isNew(operation))
            return;
        checkKeys(operation);
        // Without an operationId, the method and the path identify an operation.
        const std::string_view id = tree.textOf(operation, JsonWord::operationId);
        const CString called = id.empty() ? nameOf(name) : CString(id);
        readBody(partOf(tree.find(operation, JsonWord::requestBody)), called + "Request");
        for (const Index at : membersOf(operation, JsonWord::responses))
            if (!isExtension(at))
                readBody(partOf(at), called + "Response");
        const Index callbacks = partOf(tree.find(operation, JsonWord::callbacks));
        if (callbacks != 0 && depth == kMaxCallbacks) {
            documents.note(SourceReport::cutShort, callbacks,
                           "more than " + std::to_string(kMaxCallbacks) + " callbacks inside each other");
            return;
        }
        ++depth;
        for (const Index at : tree.childrenOf(callbacks))
            readPaths(partOf(at), spend(called + "_" + CString(tree.key(at)) + "_"));
        --depth;
    }

    // A body has one schema for each media type, and one for each item of a stream.
    void readBody(Index body, const CString& name)
    {
        checkKeys(body);
        if (const Index misplaced = tree.find(body, JsonWord::schema)) // as in Swagger 2.0
            documents.note(SourceReport::misplacedStatement, misplaced, "schema");
        for (const Index at : membersOf(body, JsonWord::content)) {
            const Index media = partOf(at);
            checkKeys(media);
            for (const JsonWord word : {JsonWord::schema, JsonWord::itemSchema}) {
                const Index schema = tree.find(media, word);
                if (schema == 0 || !isNew(schema))
                    continue;
                if (refersToXml(tree, schema))
                    readXml(schema, {}, name, schemas.querySource());
                else
                    schemas.addBody(schema, name);
            }
        }
    }

    // In version 2 the operations of a channel hold its messages, several as alternatives. In version 3 the channel
    // holds them.
    void readChannel(Index channel, std::string_view name)
    {
        const CString called = nameOf(name);
        checkKeys(channel);
        for (const JsonWord operation : {JsonWord::publish, JsonWord::subscribe}) {
            const Index holder = partOf(tree.find(channel, operation));
            checkKeys(holder);
            const Index message = tree.find(holder, JsonWord::message);
            const std::string_view id = tree.textOf(holder, JsonWord::operationId);
            const CString own = id.empty() ? called : CString(id);
            const Index several = tree.find(partOf(message), JsonWord::oneOf, JsonNode::array);
            for (const Index at : tree.childrenOf(several))
                readReferred(at, own);
            if (several == 0)
                readReferred(message, own);
        }
        for (const Index at : membersOf(channel, JsonWord::messages))
            readMessage(partOf(at), tree.key(at));
    }

    // Adds a message of a channel without keys. If the channel refers to it, it has a key in another document.
    void readReferred(Index node, std::string_view name)
    {
        const Index message = partOf(node);
        const bool hasKey =
            message != tree.target(node) && !tree.key(message).empty() && tree.keyOf(message) != JsonWord::message;
        readMessage(message, hasKey ? tree.key(message) : name);
    }

    // Adds a message. Its name is the `name`, else the `messageId`, else its key or channel.
    void readMessage(Index message, std::string_view name)
    {
        if (message == 0 || !isNew(message))
            return;
        checkKeys(message);
        // The last one found is used, so `name` takes precedence.
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

    // Returns the headers of a message with those of its traits, which come first, so that the message's own take
    // precedence; 0 if there are none.
    Index headersOf(Index message)
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
        return tree.addList(JsonWord::allOf, parts, tree[found.back()].place);
    }

    // Returns the schema that a node holds beside its format, references followed, and sets `format`. Returns the
    // node itself if it holds none. Only version 3 has such schemas.
    Index withoutFormat(Index node, CString& format)
    {
        const Index target = follow(node);
        const Index says = tree.find(target, JsonWord::schemaFormat, JsonNode::string);
        const Index schema = tree.find(target, JsonWord::schema);
        if (says == 0 || schema == 0)
            return node;
        format = lowerAscii(tree.text(says));
        return schema;
    }

    // Adds a schema of a message. An empty `format` is that of the description itself. A payload always becomes a
    // record.
    void readSchema(Index schema, CString format, const CString& name, bool isPayload)
    {
        if (schema == 0)
            return;
        const auto before = static_cast<SourceTypes::Index>(sources.types.candidates.size());
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
        for (SourceTypes::Index added = before; isPayload && added < sources.types.candidates.size(); ++added)
            sources.types.recordOf(added);
    }

    // Adds a schema in XML Schema: a text, or a reference to one or to a file. A file in JSON or YAML holds parts of
    // the description.
    void readXml(Index schema, const CString& format, const CString& name, Index source)
    {
        Index node = tree.target(schema);
        for (int i = 0; i < kLongestChain && node != 0; ++i) {
            schemas.leaveOut(node); // see readSchema()
            const Index reference = tree.find(node, JsonWord::ref, JsonNode::string);
            const bool isFile = !tree.text(reference).empty() && !tree.text(reference).starts_with('#') &&
                                !isFileNamed(tree.text(reference), {".json", ".yaml", ".yml"});
            if (isFile || tree.is(node, JsonNode::string)) {
                const Index text = isFile ? reference : node;
                return sources.xml.add({tree.text(text), isFile, tree[text].isLiteral, tree[text].place,
                                        documents.queryFolder(text), name},
                                       source);
            }
            if (reference == 0)
                return documents.note(SourceReport::moduleUnreadable, schema, format);
            node = documents.resolve(reference, true);
        }
        if (node != 0)
            documents.note(SourceReport::cutShort, node,
                           "more than " + std::to_string(kLongestChain) + " references in a row");
    }

    // Declares a schema of the components that holds its format.
    void readComponent(Index node)
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

    JsonSources& sources;
    JsonDocuments& documents;
    JsonTree& tree;
    JsonTypes& schemas;
    AvroTypes avro;
    std::unordered_set<Index> visited; // nodes that have been read
    int depth = 0;                     // nesting of callbacks
};

} // namespace

void readApis(JsonSources& sources)
{
    ApiMessages(sources).read();
}
