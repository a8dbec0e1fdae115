#pragma once

#include "Base/NameTable.h"
#include "Import/Schema/SchemaGrammar.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

/// A name with its namespace (https://www.w3.org/TR/xml-names/, expanded name), both by number.
struct SchemaName
{
    NameTable::Id space = 0;
    NameTable::Id local = 0;

    friend bool operator==(const SchemaName&, const SchemaName&) = default;
};

/// A statement of a schema document (https://www.w3.org/TR/xmlschema-1/) that has a part in types.
struct SchemaNode
{
    using Index = std::uint32_t;

    enum Flags : std::uint16_t
    {
        isAbstract = 1,
        isMixed = 2,
        saysMixed = 4, ///< `mixed` is written, whatever it says
        isProhibited = 8,
        isReference = 16, ///< `reference` is its `ref`
        isQualified = 32, ///< by its own `form`
        saysForm = 64
    };

    SchemaTag tag = SchemaTag::none;
    std::uint8_t occurs = 1; ///< by its own `maxOccurs`: 0, 1, or 2 for more often
    std::uint16_t flags = 0;
    Index parent = 0;
    Index next = 0; ///< the next sibling; 0: none
    Index firstChild = 0;
    NameTable::Id name = 0; ///< `name`, an enumeration's `value`, or the `schemaLocation`
    SchemaName reference;   ///< `ref`, `type`, `base` or `itemType`
    std::uint32_t list = 0; ///< where `memberTypes` or `substitutionGroup` begin among the listed names
    std::uint32_t documentation = 0;
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    std::uint32_t document = 0;

    bool hasName() const { return name != 0; }
    bool is(Flags flag) const { return (flags & flag) != 0; }
};

/// One document of a schema, in one namespace.
struct SchemaDocument
{
    CString folder;             ///< in which references to other documents are looked up
    std::uint32_t file = 0;     ///< its number in the report
    SchemaNode::Index root = 0; ///< 0: it could not be read
    SchemaNode::Index end = 0;  ///< behind its last node
    NameTable::Id space = 0;
    std::vector<std::pair<NameTable::Id, NameTable::Id>> prefixes; ///< that its root declares, with their namespaces
    bool hasTarget = false;                                        ///< it says its namespace itself
    bool elementsQualified = false;
    bool attributesQualified = false;
};

/// The nodes of all documents of a schema, each document's side by side in document order, and their texts.
class SchemaTree
{
public:
    using Index = SchemaNode::Index;

    SchemaTree();

    const SchemaNode& operator[](Index at) const { return nodes[at]; }
    std::size_t size() const { return nodes.size(); }

    /// The first child that has one of these tags, from `from` on; 0 when there is none.
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

    std::string_view text(NameTable::Id id) const { return names[id]; }

    /// Whether a document can carry the name.
    bool isXmlName(NameTable::Id name)
    {
        checked.resize(std::max<std::size_t>(checked.size(), name + 1));
        if (checked[name] == 0)
            checked[name] = ::isXmlName(names[name]) ? 1 : 2;
        return checked[name] == 1;
    }

    std::string_view documentation(Index at) const { return documentations[nodes[at].documentation]; }
    const SchemaDocument& documentOf(Index at) const { return documents[nodes[at].document]; }

    /// What the node's `ref`, `type` or `base` names: a document without a namespace takes that of its includer.
    SchemaName referenceOf(Index at) const { return adopted(at, nodes[at].reference); }

    /// The names in its `memberTypes` or `substitutionGroup`.
    std::vector<SchemaName> listOf(Index at) const;
    SchemaName firstListed(Index at) const { return adopted(at, listed[nodes[at].list]); }

    /// True for the namespaces of XML Schema of 2001, 2000/10 and 1999.
    static bool isSchemaLanguage(NameTable::Id space) { return space >= 1 && space <= 3; }
    static constexpr NameTable::Id kXmlNamespace = 4;
    static constexpr NameTable::Id kValueName = 5; ///< the text "value"

    /// True for the namespaces of the encodings of SOAP 1.1 and 1.2.
    static bool isSoapEncoding(NameTable::Id space) { return space == 6 || space == 7; }

    /// Takes back all nodes from `first` on.
    void dropFrom(Index first) { nodes.resize(first); }

    /// Copies the nodes of a document for another namespace. Answers the new document.
    std::uint32_t adopt(std::uint32_t document, NameTable::Id space);

    NameTable names;
    std::vector<SchemaNode> nodes;  // the first one is none
    std::vector<SchemaName> listed; // lists, each ended by an empty name
    std::vector<std::string_view> documentations;
    std::vector<SchemaDocument> documents;
    Arena texts;

private:
    SchemaName adopted(Index at, SchemaName name) const;

    std::vector<char> checked; // names: 1 for one of XML, 2 for none
};
