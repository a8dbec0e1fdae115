#pragma once

#include "Import/Full/FullMessage.h"

/// The importer of API descriptions: OpenAPI 3 and AsyncAPI 2 and 3, in JSON or YAML.
class OpenApiMessage : public FullMessage
{
public:
    OpenApiMessage() : FullMessage(m_descr) {}

    static MsgBase* New() { return new OpenApiMessage; }

    int isFileMode() const override { return 1; }

    static MsgUIDescriptor m_descr;

protected:
    /// `source` is the name of the file.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) override;
};
