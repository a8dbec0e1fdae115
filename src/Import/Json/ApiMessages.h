#pragma once

#include "Import/Json/AvroTypes.h"
#include "Import/Json/JsonTypes.h"
#include "Import/Schema/Full/MessageSchemas.h"

/// Finds the messages of an API description and adds them as candidates for main types: the bodies of operations, the
/// payloads and headers of channels. An item that several places refer to is read once.
class ApiMessages
{
public:
    using Index = JsonNode::Index;

    ApiMessages(JsonDocuments& documents, JsonTypes& schemas, AvroTypes& avro, MessageSchemas& xml,
                SourceTypes& types) :
        documents(documents),
        tree(documents.tree), schemas(schemas), avro(avro), xml(xml), types(types)
    {}

    /// Adds the bodies of an OpenAPI document's operations, with those of webhooks and callbacks.
    void readOpenApi(Index root);

    /// Adds the messages of an AsyncAPI document's channels and components.
    void readAsyncApi(Index root);

private:
    Index follow(Index node);
    Index partOf(Index node);
    JsonTree::Children membersOf(Index holder, JsonWord key);
    bool isNew(Index node) { return visited.insert(node).second; }
    void readPaths(Index paths, std::string_view prefix);
    void readPathItem(Index item, std::string_view name);
    void readOperation(Index operation, std::string_view name);
    void readBody(Index body, const CString& name);
    void readChannel(Index channel, std::string_view name);
    void readMessage(Index message, std::string_view name);
    Index headersOf(Index message);
    Index withoutFormat(Index node, CString& format);
    void readSchema(Index schema, CString format, const CString& name, bool isPayload);
    void readXml(Index schema, const CString& format, const CString& name, Index source);
    void readComponent(Index node);

    JsonDocuments& documents;
    JsonTree& tree;
    JsonTypes& schemas;
    AvroTypes& avro;
    MessageSchemas& xml;
    SourceTypes& types;
    std::unordered_set<Index> visited; // nodes that have been read
    int depth = 0;                     // nesting of callbacks
};
