#pragma once

#include "Import/MsgBase.h"
#include "Xml/Dom.h"

/// The importer of BROKERTYPEDESCRIPTION documents, as the output page writes them: a root that holds one description
/// for each type. What a document says of folders stands; the base path plays no part.
class BrokerMessage : public MsgBase
{
public:
    BrokerMessage() : MsgBase(0) {}

    static MsgBase* New() { return new BrokerMessage; }

    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    int isFileMode() const override { return 1; }
    CString queryMainTypeName() const override { return mainTypeName; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

private:
    // The type that is being read, and where it lies.
    struct Type
    {
        CString folder;
        CString name;
        Element* element;
    };

    // What a content element of a type says: its tag, the kind that it makes of the type, and how the rest is read.
    struct Content
    {
        std::string_view tag;
        Element::ElementTypes kind;
        void (BrokerMessage::*read)(const IXMLDOMNode& content, const Type& type);
    };

    bool readType(const IXMLDOMNode& node);
    void readContent(const IXMLDOMNode& content, const Type& type);
    void readArray(const IXMLDOMNode& content, const Type& type);
    void readConstants(const IXMLDOMNode& content, const Type& type);
    void readFields(const IXMLDOMNode& content, const Type& type);
    void readTable(const IXMLDOMNode& content, const Type& type);
    void passOver(std::string_view what, const CString& typeName);
    static int getAttribute(const IXMLDOMNode& node, std::string_view name, CString& value);

    static const Content kContents[];

    CString mainTypeName; // the root's local name
};
