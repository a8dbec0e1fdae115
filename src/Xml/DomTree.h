#pragma once

#include "Base/Arena.h"
#include "Xml/DomPlace.h"
#include "Xml/XmlParser.h"

#include <cstddef>
#include <cstdint>

class DomTree;

/// A qualified name and how much of it is the prefix with its colon.
struct DomName
{
    std::string_view text;
    std::uint32_t prefixLength = 0;
};

enum class DomKind : std::uint8_t
{
    element,
    attribute,
    text,
    cdata,
    comment,
    instruction,
    document, ///< the root of a tree
    unplaced  ///< the parent of nodes that stand nowhere yet; they are not among its children
};

/// What all nodes have. An attribute has no more.
struct DomNode
{
    std::string_view name;
    std::string_view value;
    DomNode* next = nullptr; ///< the next sibling, or the next attribute
    std::uint32_t prefixLength = 0;
    DomKind kind = DomKind::element;
};

/// A node with a place in the tree.
struct DomTreeNode : DomNode
{
    DomPlace place; ///< of an element's start tag, for other nodes of one that is near; unknown if it was not read
    DomTreeNode* parent = nullptr;
    DomTreeNode* firstChild = nullptr;
    DomTreeNode* lastChild = nullptr;
    DomNode* firstAttribute = nullptr;

    DomTreeNode* nextSibling() const { return static_cast<DomTreeNode*>(next); }
};

/// The node where a climb through parents ends, and the tree that it ends in.
struct DomRoot : DomTreeNode
{
    DomTree* tree = nullptr;
};

/// The nodes of one document and the storage that they lie in. Nodes have no destructors and own nothing.
class DomTree
{
public:
    DomTree();
    DomTree(const DomTree&) = delete;
    DomTree& operator=(const DomTree&) = delete;

    /// Forgets all nodes.
    void clear();

    /// A node that stands nowhere yet. The texts must be literals or lie in the arena.
    DomTreeNode* create(DomKind kind, DomName name, std::string_view value);
    DomNode* createAttribute(DomName name, std::string_view value);

    /// A copy of a qualified name.
    DomName keepName(std::string_view qualified);

    /// Puts a node that stands nowhere behind the last child of `parent`.
    static void link(DomTreeNode& parent, DomTreeNode& child);

    /// The end of the climb from a node.
    static DomRoot& rootOf(DomTreeNode& node);

    Arena& queryArena() { return arena; }
    DomRoot& queryDocument() { return document; }

    IXMLDOMParseError parseError;

private:
    Arena arena;
    DomRoot document;
    DomRoot unplaced;
};

/// Appends `node` and all that is in it to `out` as XML text.
void writeDom(const DomNode& node, CString& out);

/// Fills an empty tree with a file, or sets its parseError and answers false.
bool buildDom(DomTree& tree, const CString& fileName);
