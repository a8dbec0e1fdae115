#pragma once

#include "Import/Full/FullMessage.h"

#include <span>

class JsonDocuments;
class JsonTypes;
class MessageSchemas;

/// The documents of one import, and what their types are added to. A reader adds the candidates for main types under
/// the document's position, see JsonTypes::setSource().
struct JsonSources
{
    std::span<std::uint32_t> roots; ///< of the documents; 0 if the same file was given before, or, set by the reader,
                                    ///< if the document is only a part of others
    JsonDocuments& documents;
    JsonTypes& schemas;
    MessageSchemas& xml; ///< for schemas in XML Schema
    SourceTypes& types;
    SourceReport& report;
    bool areRequested; ///< the caller has requested main types, which may be any types
};

/// The base of the importers of schemas in JSON or YAML. Reads one document or a set. A document that others of the set
/// refer to gets no main type of its own. The three importers differ in their readers only.
class JsonMessage : public FullMessage
{
public:
    /// Makes types from documents, in one language.
    using Reader = void(JsonSources& sources);

    /// `withComments` allows comments in JSON.
    JsonMessage(MsgUIDescriptor& row, Reader& readDocuments, bool withComments = false) :
        FullMessage(row), readDocuments(readDocuments), withComments(withComments)
    {}

    /// Documents are read from files, because references are relative to them.
    int isFileMode() const override { return 1; }

protected:
    /// `source` is the name of the first file, not its content.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) final;

private:
    Reader& readDocuments;
    const bool withComments;
};

// The reader of each language. The last two are in ApiMessages.cpp and AvroTypes.cpp.
JsonMessage::Reader readJsonSchemas, readApis, readAvro;

/// The importer of JSON Schemas, drafts 4 to 2020-12, in JSON or YAML.
class JsonSchemaMessage : public JsonMessage
{
public:
    JsonSchemaMessage() : JsonMessage(m_descr, readJsonSchemas) {}
    static MsgBase* New() { return new JsonSchemaMessage; }
    static MsgUIDescriptor m_descr;
};

/// The importer of API descriptions: OpenAPI 3 and AsyncAPI 2 and 3, in JSON or YAML.
class OpenApiMessage : public JsonMessage
{
public:
    OpenApiMessage() : JsonMessage(m_descr, readApis) {}
    static MsgBase* New() { return new OpenApiMessage; }
    static MsgUIDescriptor m_descr;
};

/// The importer of Avro schemas and protocols. Comments are allowed, as by other parsers of Avro.
class AvroMessage : public JsonMessage
{
public:
    AvroMessage() : JsonMessage(m_descr, readAvro, true) {}
    static MsgBase* New() { return new AvroMessage; }
    static MsgUIDescriptor m_descr;
};
