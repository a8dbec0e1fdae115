#pragma once

#include "Import/Full/FullMessage.h"

class SchemaSet;

/// The importer of XML Schema files that reads them in full: namespaces, documents, derived types. Also reads WSDLs
/// among them, and is the base of their importer.
class SchemaFullMessage : public FullMessage
{
public:
    SchemaFullMessage();
    explicit SchemaFullMessage(MsgUIDescriptor& row) : FullMessage(row) {}

    static FullMessage* New() { return new SchemaFullMessage; }

    int isFileMode() const override { return 1; }
    CString unsupportedByLiteral(const CString& fileName) const override;

protected:
    /// Throws SourceRefusal if `fileName` and the further files contain nothing for this importer.
    virtual void check(const SchemaSet&, const CString& /*fileName*/) const {}

    /// `source` is the name of the schema file. All sources are one set. Throws SourceRefusal as SchemaSet::load()
    /// does, if a requested main type is not found, and if a bound is exceeded.
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) override;
};
