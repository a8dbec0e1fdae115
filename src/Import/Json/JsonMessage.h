#pragma once

#include "Import/Full/FullMessage.h"
#include "Import/Json/JsonTypes.h"

/// The base of the importers of schemas in JSON or YAML. Reads one document or a set. A document that others of the set
/// refer to gets no main type of its own.
class JsonMessage : public FullMessage
{
public:
    using FullMessage::FullMessage;

    int isFileMode() const override { return 1; }
    bool setFurtherFiles(const std::vector<CString>& files) override { return keepFurtherFiles(files); }

protected:
    using Index = JsonNode::Index;

    /// Makes types of documents. `roots` holds a root for each document of the set; 0 if the same file was given
    /// before. Sets the roots of those to 0 that are only parts of others. Candidates for main types are added under
    /// the document's position, see JsonTypes::setSource().
    virtual void readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas, SourceTypes& types,
                               SourceReport& report) = 0;

    /// `source` is the name of the first file, not its content.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) final;
};
