#pragma once

#include "Import/Json/JsonMessage.h"

/// The importer of Avro schemas and protocols.
class AvroMessage : public JsonMessage
{
public:
    AvroMessage() : JsonMessage(m_descr) {}

    static MsgBase* New() { return new AvroMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas, SourceTypes& types,
                       SourceReport& report) override;
};
