#pragma once

#include "Import/Json/JsonMessage.h"

/// The importer of JSON Schemas, drafts 4 to 2020-12, in JSON or YAML.
class JsonSchemaMessage : public JsonMessage
{
public:
    JsonSchemaMessage() : JsonMessage(m_descr) {}

    static MsgBase* New() { return new JsonSchemaMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas, SourceTypes& types,
                       SourceReport& report) override;
};
