#pragma once

#include "Import/Schema/Full/SchemaDocumentation.h"
#include "Import/Schema/Full/SchemaTree.h"
#include "Import/Schema/SchemaStatements.h"
#include "Xml/XmlParser.h"

/// Reads one document of a schema into the tree. Tags are known by their namespace, whatever the prefix.
class SchemaReader : public XmlHandler
{
public:
    /// The document is the tree's last one, and empty.
    SchemaReader(SchemaTree& tree, SourceReport& report);

    void scope(const XmlScope& scope) override;
    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    void text(std::string_view text) override;
    void cdata(std::string_view data) override { text(data); }
    void entityLeftOut(std::string_view name, XmlPlace place) override { statements.entityLeftOut(name, place); }
    bool wantsScopes() const override { return true; }

    /// Reports what the document says that no type gets.
    void finish() { statements.finish(); }

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

    void enter(SchemaTag tag);
    void makeArray(XmlAttributes attributes);
    void holdInLast(SchemaNode item);
    void startOther(SchemaTag tag);
    void readAttribute(SchemaNode& node, const SchemaStatements::Attribute& attribute);
    void readRootAttribute(const SchemaStatements::Attribute& attribute);
    std::uint32_t readList(std::string_view value);
    NameTable::Id nameOf(std::string_view text);
    SchemaName resolve(std::string_view qualified);
    void leaveScope(std::size_t shadowedBefore);
    void keepDocumentation();

    SchemaTree& tree;
    const std::uint32_t document;
    std::vector<Level> open;
    std::vector<NameTable::Id> spaces; // by prefix
    NameTable::Id lastPrefix = 0;      // that was resolved
    std::vector<Shadowed> shadowed;
    std::size_t shadowedBefore = 0; // the element that begins
    SchemaStatements statements;
    std::size_t skipped = 0;    // how many elements are open that hold nothing to read
    std::size_t documented = 0; // how many are open from an xs:documentation on
    SchemaDocumentation documentation;
    std::vector<ImpossibleName> impossibleNames;
};
