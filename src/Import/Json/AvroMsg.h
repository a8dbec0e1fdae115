#pragma once

#include "Import/Full/FullMessage.h"

/// The importer of Avro schemas and protocols.
class AvroMessage : public FullMessage
{
public:
    AvroMessage() : FullMessage(m_descr) {}

    static MsgBase* New() { return new AvroMessage; }

    int isFileMode() const override { return 1; }

    static MsgUIDescriptor m_descr;

protected:
    /// `source` is the name of the file.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) override;
};
