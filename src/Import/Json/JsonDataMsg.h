#pragma once

#include "Import/Full/FullMessage.h"

/// The importer of JSON messages, which are examples of their type. A file holds one or several, also one a line.
/// Memory is bounded by the number of different shapes, so files may be larger than memory.
class JsonDataMessage : public FullMessage
{
public:
    JsonDataMessage() : FullMessage(m_descr) {}

    /// Returns a new importer, owned by the caller; the factory of the table of importers.
    static MsgBase* New() { return new JsonDataMessage; }

    /// Files are read in pieces, because one document may be larger than memory.
    int isFileMode() const override { return 1; }
    bool setFurtherFiles(const std::vector<CString>& files) override
    {
        furtherExamples = files;
        return true;
    }

    static MsgUIDescriptor m_descr;

protected:
    /// `source` is the name of the first file, not its content.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) override;

private:
    std::vector<CString> furtherExamples; // not furtherFiles, because all examples together are one source
};
