#pragma once

#include "Import/Schema/Full/SchemaReader.h"

#include <deque>
#include <span>
#include <unordered_set>

/// Returns true for the namespaces of WSDL 1.1, of 2.0 and of a draft of 2.0.
bool isWsdlNamespace(std::string_view uri);

/// Reads a file into the tree: a schema, or the schemas and messages of a WSDL (https://www.w3.org/TR/wsdl,
/// https://www.w3.org/TR/wsdl20/). Each schema of a WSDL is a document of its own, after an empty one for the file.
/// Another document, after these, holds the elements that are made of messages. Bindings, ports and services don't
/// affect types.
class WsdlReader : public XmlHandler
{
public:
    /// The document of the file is the last one of the tree and has no nodes yet.
    WsdlReader(SchemaTree& tree, SourceReport& report);

    void startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope) override;
    void endElement() override;
    void text(std::string_view text) override;
    void entityLeftOut(std::string_view name, XmlPlace place) override;

    /// Reports the findings in the documents, and makes elements of messages with typed parts. Call it once after the
    /// parse, unless the file is left out. The functions below are valid after it.
    void finish();

    /// Returns whether the file is a WSDL.
    bool holdsWsdl() const { return isWsdl; }

    /// Returns the number of a message's name by the component of the report; 0 for kMessages, nothing for a component
    /// of a schema.
    static std::optional<NameTable::Id> messageOf(SourceReport::Component component)
    {
        return component < kMessages ? std::nullopt : std::optional(component - kMessages);
    }

    /// The component of messages that only refer to elements. The component of a named message is this plus the number
    /// of its name, so that messages and nodes have different numbers: there are never so many nodes.
    static constexpr SourceReport::Component kMessages = 0x8000'0000;

    /// An element that a message consists of, and the place of the message's part.
    struct Root
    {
        SchemaName name;
        SourcePlace place;
        SchemaNode::Index made = 0; ///< the element made of the message's typed parts, which no schema declares; else 0
    };
    /// Returns the elements of all messages, in their order.
    const std::vector<Root>& queryRoots() const { return roots; }

    /// Returns the names of the messages that the file declares, and of its interfaces and their faults, which have the
    /// word "interface" or "fault" in front.
    const std::unordered_set<NameTable::Id>& queryNames() const { return names; }

    /// A reference to one of these, without its prefix.
    struct Use
    {
        NameTable::Id name;
        SourcePlace place;
    };
    /// Returns the references in their order.
    const std::vector<Use>& queryUses() const { return uses; }

    /// Another file that a WSDL imports or includes.
    struct Import
    {
        CString location;
        CString space;
        SourcePlace place;
    };
    /// Returns the files that the WSDL imports or includes, in their order.
    const std::vector<Import>& queryImports() const { return imports; }

private:
    using Index = SchemaNode::Index;

    // A part of a message, with an element or else a type.
    struct Part
    {
        std::uint32_t message; // number of the message; 0 if the part is a whole message
        NameTable::Id name;
        SchemaName element;
        SchemaName type;
        SourcePlace place;
        bool isFault = false; // of an interface in WSDL 2.0
    };

    void beginFile(std::string_view local, bool isOfWsdl);
    SchemaDocument& addDocument();
    void beginSchema(XmlName name, XmlAttributes attributes, const XmlScope& scope);
    void readStatement(std::string_view local, XmlAttributes attributes, SourcePlace place);
    void readOther(std::string_view local, XmlAttributes attributes, bool isOfSchemas, SourcePlace place);
    void readNames(std::string_view local, XmlAttributes attributes, SourcePlace place);
    void addUse(const CString& kind, std::string_view name, SourcePlace place);
    void addImport(std::string_view location, std::string_view space, SourcePlace place);
    void beginMessage(std::string_view name, SourcePlace place);
    void readPart(XmlAttributes attributes, SourcePlace place);
    void readContent(std::string_view local, XmlAttributes attributes, SourcePlace place);
    void makeMessages();
    Index makeMessage(std::span<const Part> own, NameTable::Id name);
    SchemaName resolve(std::string_view qualified) const;

    SchemaTree& tree;
    SourceReport& report;
    const std::uint32_t document;
    std::deque<SchemaReader> schemas; // those of a WSDL, or the whole file; they keep their findings until finish()
    std::size_t replayed = 0;         // prefixes passed on to schemas
    std::size_t depth = 0;            // open elements inside the last schema; 0 if it has ended
    bool isWsdl = false;
    std::string_view section;           // the statement of level 2 that is open; empty if it isn't of WSDL
    std::vector<std::size_t> open;      // for each element around schemas, the declarations before it
    std::vector<XmlNamespace> declared; // by those; the texts are valid until the parse ends
    NameTable::Id target = 0;
    std::vector<NameTable::Id> messages{0};  // names of messages by number
    std::unordered_set<NameTable::Id> names; // see queryNames()
    std::vector<Use> uses;
    std::uint32_t message = 0; // that is open
    std::vector<Part> parts;
    std::vector<Root> roots;
    std::vector<Import> imports;
};
