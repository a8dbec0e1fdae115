#pragma once

#include "Import/MsgBase.h"

class XMLDataWalk;

/// The importer of XML instance documents. Each element name becomes one element of the model, each attribute a field
/// of its element; what holds attributes or elements is a record, and what occurs more than once directly under one
/// node repeats. Values are not looked at: every leaf is a text field.
///
/// Several documents are one body of examples: their types are the union, and a field repeats where it repeats in one
/// of them. The first one's root is the main type.
class XMLDataMessage : public MsgBase
{
public:
    XMLDataMessage() : MsgBase(1) {}

    static MsgBase* New() { return new XMLDataMessage; }

    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    int isFileMode() const override { return 1; }
    bool setFurtherFiles(const std::vector<CString>& files) override;
    CString queryMainTypeName() const override { return mainTypeName; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

private:
    void doParse(XMLDataWalk& walk);

    std::vector<CString> furtherFiles;
    CString mainTypeName; // the root's tag, prefix included
    CString typeFolder;   // of all types
};
