#pragma once

#include "Import/Schema/Full/SchemaTree.h"
#include "Xml/XmlParser.h"

/// Reads one document of a schema into the tree. Tags are known by their namespace, whatever the prefix.
class SchemaReader : public XmlHandler
{
public:
    /// `document` is the tree's last one, and empty.
    explicit SchemaReader(SchemaTree& tree);

    void scope(const XmlScope& scope) override;
    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    void text(std::string_view text) override;
    void cdata(std::string_view data) override { text(data); }
    bool wantsScopes() const override { return true; }

    /// How many of what is only counted there are: facets but enumerations, nillable, defaults, identity constraints.
    struct Counts
    {
        std::size_t facets = 0;
        std::size_t nillable = 0;
        std::size_t defaults = 0;
        std::size_t constraints = 0;
    };
    const Counts& queryCounts() const { return counts; }

    /// A name that no document can carry, and the node in which it stands; what is called so has no name.
    struct ImpossibleName
    {
        SchemaNode::Index node;
        NameTable::Id name;
    };
    const std::vector<ImpossibleName>& queryImpossibleNames() const { return impossibleNames; }

private:
    using Index = SchemaNode::Index;

    // An element that is open. One that is no node passes its children on to nobody.
    struct Level
    {
        Index node = 0;
        Index lastChild = 0;
        std::size_t shadowed = 0; // how many declarations of namespaces were in force when it began
        bool isAnnotation = false;
    };

    // A prefix that an open element declares, and what it stood for before.
    struct Shadowed
    {
        NameTable::Id prefix;
        NameTable::Id space;
    };

    static constexpr NameTable::Id kUndeclared = ~0U;

    void enter(SchemaTag tag, XmlAttributes attributes);
    void startOther(std::string_view tag);
    void readAttribute(SchemaNode& node, std::string_view name, std::string_view value);
    void readRootAttribute(std::string_view name, std::string_view value);
    void readForm(SchemaNode& node, std::string_view value) const;
    std::uint32_t readList(std::string_view value);
    NameTable::Id nameOf(std::string_view text);
    SchemaName resolve(std::string_view qualified);
    void leaveScope(std::size_t shadowedBefore);
    void keepDocumentation();

    SchemaTree& tree;
    const std::uint32_t document;
    std::vector<Level> open;
    std::vector<NameTable::Id> spaces; // by prefix
    std::vector<Shadowed> shadowed;
    std::size_t shadowedBefore = 0; // the element that begins
    bool isOfSchema = false;        // so is it, by its namespace
    const char* lastUri = nullptr;  // of the element before it; equal ones are one
    int line = 0;
    std::size_t skipped = 0;    // how many elements are open that hold nothing to read
    std::size_t documented = 0; // how many are open from an xs:documentation on
    CString documentation;
    Counts counts;
    std::vector<ImpossibleName> impossibleNames;
};
