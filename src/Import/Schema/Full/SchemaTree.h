#pragma once

#include "Base/LargePages.h"
#include "Base/NameTable.h"
#include "Import/Schema/SchemaGrammar.h"
#include "Import/SourceReport.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

/// A name with its namespace (expanded name, https://www.w3.org/TR/xml-names/), both as numbers of the tree's name
/// table. 0 is the empty text: no namespace, no name. The namespace of an undeclared prefix is one that no component
/// has.
struct SchemaName
{
    NameTable::Id space = 0;
    NameTable::Id local = 0;

    /// Returns both numbers as one, for tables.
    std::uint64_t key() const { return static_cast<std::uint64_t>(space) << 32 | local; }

    friend bool operator==(const SchemaName&, const SchemaName&) = default;
};

/// A statement of a schema document (https://www.w3.org/TR/xmlschema-1/) that affects types. It refers to other nodes
/// by index, because nodes move when further documents are read; index 0 is a node without tag, children and name, so
/// that searches from a missing node find nothing.
struct SchemaNode
{
    using Index = std::uint32_t;

    enum Flags : std::uint16_t
    {
        isAbstract = 1,
        isMixed = 2,
        hasMixed = 4, ///< has the attribute `mixed`
        isProhibited = 8,
        isReference = 16, ///< `reference` holds its `ref`
        isQualified = 32, ///< according to its own `form`
        hasForm = 64,
        // Of elements and complex types, by themselves or by the default of their document.
        blocksSubstitution = 128,
        blocksExtension = 256,
        blocksRestriction = 512,
        blocksAll = blocksSubstitution | blocksExtension | blocksRestriction,
        isOverride = 1024,   ///< a redefinition whose components replace others as a whole
        lacksDefaults = 2048 ///< a complex type without the default attributes of its document
    };

    SchemaTag tag = SchemaTag::none;
    // The model only has single fields and tables, so counts above 1 are not distinguished.
    std::uint8_t occurs = 1; ///< its own `maxOccurs`: 0, 1, or 2 for more
    std::uint16_t flags = 0;
    Index parent = 0;
    Index next = 0; ///< the next sibling, or 0
    Index firstChild = 0;
    // Statements with a value or a location have no `name`.
    NameTable::Id name = 0; ///< `name`, an enumeration's `value`, or the `schemaLocation`
    // Without the namespace of an including document, see referenceOf(). In an import, only the imported namespace.
    SchemaName reference;   ///< `ref`, `type`, `base` or `itemType`
    std::uint32_t list = 0; ///< index in `listed` of its `memberTypes` or `substitutionGroup`
    std::uint32_t documentation = 0;
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    std::uint32_t document = 0;

    bool hasName() const { return name != 0; }
    bool is(Flags flag) const { return (flags & flag) != 0; }
};

/// One document of a schema, in one namespace. A file without a namespace that several namespaces include is a separate
/// document, with its own nodes, in each of them.
struct SchemaDocument
{
    CString folder;             ///< base of relative references
    std::uint32_t file = 0;     ///< its number in the report
    SchemaNode::Index root = 0; ///< 0 if it could not be read
    SchemaNode::Index end = 0;  ///< one past its last node
    NameTable::Id space = 0;
    std::vector<std::pair<NameTable::Id, NameTable::Id>> prefixes; ///< declared by its root, with their namespaces
    bool hasTarget = false;                                        ///< declares its own namespace
    bool elementsQualified = false;
    bool attributesQualified = false;
    SchemaName defaultAttributes; ///< the attribute group that its complex types have; empty if there is none
    std::uint16_t blocks = 0;     ///< the flags that its elements and complex types have by default
};

/// The nodes of all documents of a schema, with their texts. Nodes of a document are adjacent and in document order, so
/// the nodes inside a node follow it, and a parent has a smaller index. Texts, lists and documentation are only added,
/// and live as long as the tree.
class SchemaTree
{
public:
    using Index = SchemaNode::Index;

    SchemaTree();

    /// Returns a node. The reference is valid until a node is added.
    const SchemaNode& operator[](Index at) const { return nodes[at]; }
    /// Returns the number of nodes, with node 0: one more than the largest index.
    std::size_t size() const { return nodes.size(); }

    /// Returns the first sibling from `from` on with one of these tags; 0 if there is none.
    template <class... Tags>
    Index firstOf(Index from, Tags... tags) const
    {
        while (from != 0 && !((nodes[from].tag == tags) || ...))
            from = nodes[from].next;
        return from;
    }

    template <class... Tags>
    Index childOf(Index parent, Tags... tags) const
    {
        return firstOf(nodes[parent].firstChild, tags...);
    }

    /// Calls `visit` with each statement at the top of a document, and after a redefinition with those inside of it.
    template <class Visit>
    void visitTop(const SchemaDocument& document, Visit visit) const
    {
        for (Index at = nodes[document.root].firstChild; at != 0; at = nodes[at].next) {
            visit(at);
            if (nodes[at].tag == SchemaTag::redefine)
                for (Index inner = nodes[at].firstChild; inner != 0; inner = nodes[inner].next)
                    visit(inner);
        }
    }

    /// Returns the restriction or extension of a complex type; 0 if there is none.
    Index derivationOf(Index type) const
    {
        return childOf(childOf(type, SchemaTag::complexContent, SchemaTag::simpleContent), SchemaTag::extension,
                       SchemaTag::restriction);
    }

    /// Returns the flag of elements and types that block the derivation of a type from its base.
    SchemaNode::Flags blockOf(Index type) const
    {
        return nodes[derivationOf(type)].tag == SchemaTag::extension ? SchemaNode::blocksExtension
                                                                     : SchemaNode::blocksRestriction;
    }

    /// Returns the text of a name.
    std::string_view text(NameTable::Id id) const { return names[id]; }

    /// Returns whether a name is one that XML allows. Caches the result.
    bool isXmlName(NameTable::Id name)
    {
        checked.resize(std::max<std::size_t>(checked.size(), name + 1));
        if (checked[name] == 0)
            checked[name] = ::isXmlName(names[name]) ? 1 : 2;
        return checked[name] == 1;
    }

    /// Returns the description of a node; empty if it has none.
    std::string_view documentation(Index at) const { return documentations[nodes[at].documentation]; }
    /// Returns the document of a node.
    const SchemaDocument& documentOf(Index at) const { return documents[nodes[at].document]; }

    /// Returns the name in the node's `ref`, `type`, `base` or `itemType`; an empty one if it has none. In a document
    /// without namespace, an unprefixed name is in the includer's namespace (XML Schema Part 1, 4.2.1).
    SchemaName referenceOf(Index at) const { return adopted(at, nodes[at].reference); }

    /// Returns the attribute group with the default attributes of a complex type; an empty name if it has none.
    SchemaName defaultAttributesOf(Index type) const
    {
        return nodes[type].is(SchemaNode::lacksDefaults) ? SchemaName()
                                                         : adopted(type, documentOf(type).defaultAttributes);
    }

    /// Returns the names in its `memberTypes` or `substitutionGroup`.
    std::vector<SchemaName> listOf(Index at) const;
    /// Returns the first of these names; empty if there are none.
    SchemaName firstListed(Index at) const { return adopted(at, listed[nodes[at].list]); }

    /// Returns whether two components declare the same, in whatever documents: equal nodes in the same order, with
    /// equal names, references and documentation, and equal defaults of their documents. Linear in the nodes of the
    /// smaller one.
    bool areEqual(Index one, Index other) const;

    /// Returns true for the namespaces of XML Schema of 2001, 2000/10 and 1999.
    static bool isSchemaLanguage(NameTable::Id space) { return space >= 1 && space <= 3; }
    static constexpr NameTable::Id kXmlNamespace = 4;
    static constexpr NameTable::Id kValueName = 5; ///< the text "value"

    /// Returns true for the namespaces of the encodings of SOAP 1.1 and 1.2.
    static bool isSoapEncoding(NameTable::Id space) { return space == 6 || space == 7; }

    /// Adds a node as the sibling after `before`, else as the first child of `parent`; 0 means none. Nodes of a
    /// document must be added in its order, without those of others between them.
    Index add(SchemaTag tag, std::uint32_t document, SourcePlace place, Index parent, Index before = 0);

    /// Removes all nodes from `first` on, of a document that turned out to be unreadable. The document itself stays.
    void dropFrom(Index first)
    {
        nodes.resize(first);
        std::erase_if(impossibleNames, [first](const auto& named) { return named.first >= first; });
    }

    /// Copies the nodes of a document into another namespace, because tables of components and types are indexed by
    /// node. Lists and documentation are shared. Returns the number of the new document.
    std::uint32_t adopt(std::uint32_t document, NameTable::Id space);

    NameTable names;
    std::vector<SchemaNode, LargePages<SchemaNode>> nodes; // node 0 is none
    std::vector<SchemaName> listed;                        // lists of names, each ended by an empty name
    std::vector<std::string_view> documentations;
    std::vector<SchemaDocument> documents;
    std::vector<std::pair<Index, NameTable::Id>> impossibleNames; // not allowed in XML; their nodes count as unnamed
    Arena texts;
    bool blocksDerivation = false; ///< a document has `block` or `blockDefault` with `extension` or `restriction`

private:
    SchemaName adopted(Index at, SchemaName name) const;

    std::vector<char> checked; // by name: 1 if XML allows it, 2 if not, 0 if not yet checked
};
