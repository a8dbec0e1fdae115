#pragma once

#include "Import/Full/FullMessage.h"

/// The importer of JSON Schemas, drafts 4 to 2020-12, in JSON or YAML.
class JsonSchemaMessage : public FullMessage
{
public:
    JsonSchemaMessage() : FullMessage(m_descr) {}

    static MsgBase* New() { return new JsonSchemaMessage; }

    int isFileMode() const override { return 1; }

    static MsgUIDescriptor m_descr;

protected:
    /// `source` is the name of the file.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) override;
};
