#pragma once

#include "Import/MsgBase.h"

class XMLDataWalk;

/// The importer of XML instance documents. Each element name becomes one element of the model, each attribute a field
/// of its element. Elements with attributes or child elements become records. Children that occur more than once in one
/// parent repeat. Values are ignored: every leaf is a text field.
///
/// Several documents are read as one set of examples: the types are their union, and a field repeats if it does in any
/// document. The main type is the root that comes first by name.
class XMLDataMessage : public MsgBase
{
public:
    /// Merges by name: all elements of a name are one element, wherever they occur.
    XMLDataMessage() : MsgBase(1) {}

    /// Returns a new importer, owned by the caller; the factory of the table of importers.
    static MsgBase* New() { return new XMLDataMessage; }

    /// `source` is the name of the first file. Fails if any of the documents isn't well-formed; nothing is declared
    /// then.
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    /// Documents are read as streams, whatever their size.
    int isFileMode() const override { return 1; }
    /// With further files, a repeated field becomes a table in each of its records, not only in the first, so that the
    /// result doesn't depend on the order of the files. Call it before the import.
    bool setFurtherFiles(const std::vector<CString>& files) override;
    /// Returns the tag of the root with its prefix.
    CString queryMainTypeName() const override { return mainTypeName; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

private:
    void doParse(XMLDataWalk& walk);

    std::vector<CString> furtherFiles;
    CString mainTypeName; // tag of the root with its prefix
    CString typeFolder;   // folder of all types
};
