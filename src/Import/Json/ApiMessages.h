#pragma once

#include "Import/Json/AvroTypes.h"
#include "Import/Json/JsonTypes.h"

/// Finds the messages of an API description, which a message type may start with: the bodies of its operations, the
/// payloads and headers of its channels. What describes several is read once.
class ApiMessages
{
public:
    using Index = JsonNode::Index;

    ApiMessages(JsonDocuments& documents, JsonTypes& schemas, AvroTypes& avro) :
        documents(documents), tree(documents.tree), schemas(schemas), avro(avro)
    {}

    /// The bodies of an OpenAPI document's operations.
    void readOpenApi(Index root);

    /// The messages of an AsyncAPI document's channels, operations and components.
    void readAsyncApi(Index root);

private:
    Index follow(Index node);
    bool isNew(Index node) { return met.insert(node).second; }
    void readPaths(Index paths, std::string_view prefix);
    void readPathItem(Index item, std::string_view name);
    void readOperation(Index operation, std::string_view name);
    void readBody(Index body, const CString& name);
    void readChannel(Index channel, std::string_view name);
    void readMessage(Index message, std::string_view name);
    void readPayload(Index message, const CString& name);

    JsonDocuments& documents;
    JsonTree& tree;
    JsonTypes& schemas;
    AvroTypes& avro;
    std::unordered_set<Index> met;
    int depth = 0; // of callbacks
};
