#pragma once

#include "Import/Schema/Full/SchemaDocumentation.h"
#include "Import/Schema/Full/SchemaTree.h"
#include "Import/Schema/SchemaStatements.h"
#include "Xml/XmlParser.h"

/// Reads one document of a schema into the tree, as a handler of its parse. Tags are identified by their namespace,
/// whatever their prefix. Statements that have no effect on types make no nodes; SchemaStatements checks them. If the
/// root is not a schema, the document gets no nodes and its root stays 0.
class SchemaReader : public XmlHandler
{
public:
    /// The document is the last one of the tree and has no nodes yet; its nodes must be the next ones that are added.
    /// If the report holds constructs back, a component is the number of its node.
    SchemaReader(SchemaTree& tree, SourceReport& report);

    void startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope) override;
    void endElement() override;
    void text(std::string_view text) override;
    void entityLeftOut(std::string_view name, XmlPlace place) override { statements.entityLeftOut(name, place); }

    /// Binds a prefix that is declared around the root of a schema.
    void bind(XmlNamespace declared);

    /// Reports the findings in the document. Not called for a document that is left out, which then adds nothing to the
    /// report.
    void finish() { statements.finish(); }

private:
    using Index = SchemaNode::Index;

    // An open element. Elements inside of skipped ones and of documentation are only counted. Children of an element
    // without a node are skipped, except the documentation in an annotation.
    struct Level
    {
        Index node = 0;
        // In an annotation, the node that it describes.
        Index lastChild = 0;
        std::size_t shadowed = 0; // size of `shadowed` at its start
        bool isAnnotation = false;
    };

    // A prefix declared by an open element, with its previous namespace.
    struct Shadowed
    {
        NameTable::Id prefix;
        NameTable::Id space;
    };

    // No name has this number, so a name in this namespace refers to nothing.
    static constexpr NameTable::Id kUndeclared = ~0U;

    void enter(SchemaTag tag, XmlName name, std::size_t shadowedBefore);
    void makeArray(XmlAttributes attributes);
    void holdInLast(NameTable::Id name);
    void startOther(SchemaTag tag, std::size_t shadowedBefore);
    void readAttribute(SchemaNode& node, const SchemaStatements::Attribute& attribute);
    void readRootAttribute(const SchemaStatements::Attribute& attribute);
    std::uint16_t readBlocks(std::string_view value);
    std::uint32_t readList(std::string_view value);
    NameTable::Id nameOf(std::string_view text);
    SchemaName resolve(std::string_view qualified);
    NameTable::Id spaceOf(std::string_view prefix);
    bool isLeftOut(XmlAttributes attributes);
    void leaveScope(std::size_t shadowedBefore);
    void keepDocumentation();

    SchemaTree& tree;
    const std::uint32_t document;
    std::vector<Level> open;
    // The namespaces that are in scope; `kUndeclared` for a prefix that isn't.
    std::vector<NameTable::Id> spaces; // by prefix
    NameTable::Id lastPrefix = 0;      // the prefix resolved last
    // The namespaces to restore in `spaces` when elements end, innermost last.
    std::vector<Shadowed> shadowed;
    const bool holds; // the report holds constructs back
    SchemaStatements statements;
    std::size_t skipped = 0;    // number of open elements that are skipped
    std::size_t documented = 0; // number of open elements from an xs:documentation on
    SchemaDocumentation documentation;
};
