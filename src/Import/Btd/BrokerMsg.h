#pragma once

#include "Import/MsgBase.h"
#include "Xml/Dom.h"

/// The importer of BROKERTYPEDESCRIPTION documents, as the output page writes them: a root with one description for
/// each type. The folders are those of the document; the base path is ignored.
///
/// Each type is a record at first, and its content element changes the kind. Fields have the type that the document
/// names, whether it describes that type or not. Parts that the model has no place for are losses, and so are types
/// that are left out.
class BrokerMessage : public MsgBase
{
public:
    /// Doesn't merge by name, because fields of one name may have different types. Usage keys of fields begin with a
    /// dot, so that they differ from those of types.
    BrokerMessage() : MsgBase(0, ".") {}

    /// Returns a new importer, owned by the caller; the factory of the table of importers.
    static MsgBase* New() { return new BrokerMessage; }

    /// `source` is the name of the file. Returns 0 without a message if the root has no children.
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    int isFileMode() const override { return 1; }
    CString queryMainTypeName() const override { return mainTypeName; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    /// Keeps types, constants or fields with the same name separate. By default they are merged into one that repeats.
    /// Comparisons of documents use it, so that no part is merged.
    void keepTwins() { keepsTwins = true; }

    static MsgUIDescriptor m_descr;

private:
    // The type that is being read, with its folder.
    struct Type
    {
        CString folder;
        std::string_view name;
        Element* element = nullptr;
        bool hasContent = false; // of a known kind

        CString fullName() const { return CString(folder).append(name); }
    };

    // An attribute that an element may have, and the variable that receives its value.
    struct Wanted
    {
        std::string_view name;
        std::string_view* value;
    };

    // A kind of content element: its tag, the kind of type it makes, and its handler.
    struct Content
    {
        std::string_view tag;
        Element::ElementTypes kind;
        void (BrokerMessage::*read)(const IXMLDOMNode& content, const Type& type);
    };

    // Nodes and their texts are valid only while their child of the root is read. The model copies what it keeps.
    bool readType(const IXMLDOMNode& node);
    void skipType(const IXMLDOMNode& type);
    void readContent(const IXMLDOMNode& content, Type& type);
    void readArray(const IXMLDOMNode& content, const Type& type);
    void readConstants(const IXMLDOMNode& content, const Type& type);
    void readFields(const IXMLDOMNode& content, const Type& type);
    void readTable(const IXMLDOMNode& content, const Type& type);
    void readAttributes(const IXMLDOMNode& node, std::initializer_list<Wanted> wanted);
    void note(SourceReport::Construct construct, const IXMLDOMNode& node, std::string_view name);
    void noteUnnamed(std::string_view name, const IXMLDOMNode& node, const char* what, const Type& type);

    static const Content kContents[];

    CString mainTypeName; // local name of the root
    bool keepsTwins = false;
};
