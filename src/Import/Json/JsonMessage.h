#pragma once

#include "Import/Full/FullMessage.h"
#include "Import/Json/JsonTypes.h"

/// The base of the importers of schemas in JSON or YAML, one document or a set. A document of a set that another one
/// refers to has no main type of its own.
class JsonMessage : public FullMessage
{
public:
    using FullMessage::FullMessage;

    int isFileMode() const override { return 1; }
    bool setFurtherFiles(const std::vector<CString>& files) override { return keepFurtherFiles(files); }

protected:
    using Index = JsonNode::Index;

    /// Says what the documents with these values declare; 0 stands for one that was given before. What a message may
    /// start with is noted under the document's position, see JsonTypes::setSource().
    virtual void readDocuments(std::span<const Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                               SourceTypes& types, SourceReport& report) = 0;

    /// `source` is the name of the first file.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) final;
};
