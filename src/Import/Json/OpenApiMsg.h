#pragma once

#include "Import/Json/JsonMessage.h"

/// The importer of API descriptions: OpenAPI 3 and AsyncAPI 2 and 3, in JSON or YAML.
class OpenApiMessage : public JsonMessage
{
public:
    OpenApiMessage() : JsonMessage(m_descr) {}

    static MsgBase* New() { return new OpenApiMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas, SourceTypes& types,
                       SourceReport& report) override;
};
