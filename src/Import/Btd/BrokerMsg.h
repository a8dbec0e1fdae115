#pragma once

#include "Import/MsgBase.h"
#include "Xml/Dom.h"

/// The importer of BROKERTYPEDESCRIPTION documents, as the output page writes them: a root that holds one description
/// for each type. What a document says of folders stands; the base path plays no part.
class BrokerMessage : public MsgBase
{
public:
    BrokerMessage() : MsgBase(0, ".") {}

    static MsgBase* New() { return new BrokerMessage; }

    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    int isFileMode() const override { return 1; }
    CString queryMainTypeName() const override { return mainTypeName; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    /// Has types, and fields of one type, that share a name be so many of them from now on. Else they are one that
    /// repeats.
    void keepTwins() { keepsTwins = true; }

    static MsgUIDescriptor m_descr;

private:
    // The type that is being read, and where it lies.
    struct Type
    {
        CString folder;
        std::string_view name;
        Element* element = nullptr;
        bool hasContent = false; // of a known kind

        CString fullName() const { return CString(folder).append(name); }
    };

    // An attribute that an element of the document may have, and what takes its value.
    struct Wanted
    {
        std::string_view name;
        std::string_view* value;
    };

    // What a content element of a type says: its tag, the kind that it makes of the type, and how the rest is read.
    struct Content
    {
        std::string_view tag;
        Element::ElementTypes kind;
        void (BrokerMessage::*read)(const IXMLDOMNode& content, const Type& type);
    };

    bool readType(const IXMLDOMNode& node);
    void passOver(const IXMLDOMNode& type);
    void readContent(const IXMLDOMNode& content, Type& type);
    void readArray(const IXMLDOMNode& content, const Type& type);
    void readConstants(const IXMLDOMNode& content, const Type& type);
    void readFields(const IXMLDOMNode& content, const Type& type);
    void readTable(const IXMLDOMNode& content, const Type& type);
    void readAttributes(const IXMLDOMNode& node, std::initializer_list<Wanted> wanted);
    void note(SourceReport::Construct construct, const IXMLDOMNode& node, std::string_view name);
    void noteUnnamed(std::string_view name, const IXMLDOMNode& node, const char* what, const Type& type);

    static const Content kContents[];

    CString mainTypeName; // the root's local name
    bool keepsTwins = false;
};
