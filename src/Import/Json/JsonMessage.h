#pragma once

#include "Import/Full/FullMessage.h"
#include "Import/Json/JsonTypes.h"
#include "Import/Schema/Full/MessageSchemas.h"

/// The base of the importers of schemas in JSON or YAML. Reads one document or a set. A document that others of the set
/// refer to gets no main type of its own.
class JsonMessage : public FullMessage
{
public:
    using FullMessage::FullMessage;

    int isFileMode() const override { return 1; }

protected:
    using Index = JsonNode::Index;

    /// Makes types from documents. `roots` holds a root for each document of the set; 0 if the same file was given
    /// before. Sets the roots of documents that are only parts of others to 0. Candidates for main types are added
    /// under the document's position, see JsonTypes::setSource(). Schemas in XML Schema are added to `xml`.
    virtual void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                               MessageSchemas& xml, SourceTypes& types, SourceReport& report) = 0;

    /// Returns whether JSON may have comments.
    virtual bool allowsComments() const { return false; }

    /// `source` is the name of the first file, not its content.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) final;
};

/// The importer of JSON Schemas, drafts 4 to 2020-12, in JSON or YAML.
class JsonSchemaMessage : public JsonMessage
{
public:
    JsonSchemaMessage() : JsonMessage(m_descr) {}

    static MsgBase* New() { return new JsonSchemaMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas, MessageSchemas& xml,
                       SourceTypes& types, SourceReport& report) override;
};

/// The importer of API descriptions: OpenAPI 3 and AsyncAPI 2 and 3, in JSON or YAML.
class OpenApiMessage : public JsonMessage
{
public:
    OpenApiMessage() : JsonMessage(m_descr) {}

    static MsgBase* New() { return new OpenApiMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas, MessageSchemas& xml,
                       SourceTypes& types, SourceReport& report) override;
};

/// The importer of Avro schemas and protocols.
class AvroMessage : public JsonMessage
{
public:
    AvroMessage() : JsonMessage(m_descr) {}

    static MsgBase* New() { return new AvroMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas, MessageSchemas& xml,
                       SourceTypes& types, SourceReport& report) override;
    bool allowsComments() const override { return true; } // as other parsers of Avro do
};
