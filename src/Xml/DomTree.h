#pragma once

#include "Base/Arena.h"
#include "Xml/XmlParser.h"
#include "Xml/XmlPlace.h"

#include <cstddef>
#include <cstdint>

class DomTree;

/// A qualified name, and the length in bytes of its prefix with the colon; 0 without a prefix. Views into the arena, or
/// literals.
struct DomName
{
    std::string_view text;
    std::uint32_t prefixLength = 0;
};

/// The kinds of nodes. The kind decides which struct a node is: attributes are a DomNode, `document` and `unplaced` a
/// DomRoot, all others a DomTreeNode.
enum class DomKind : std::uint8_t
{
    element,
    attribute,
    text,
    cdata,
    comment,
    instruction,
    document, ///< the root of a tree
    unplaced  ///< the parent of nodes that have no place yet; they are not among its children
};

/// The part that all nodes have. Attributes have only this, which saves memory.
struct DomNode
{
    std::string_view name;
    // Empty for elements and the roots. A view into the arena, or a literal.
    std::string_view value;
    DomNode* next = nullptr; ///< the next sibling, or the next attribute
    std::uint32_t prefixLength = 0;
    DomKind kind = DomKind::element;
};

/// A node with links to its parent and children. `next` is always one of these.
struct DomTreeNode : DomNode
{
    XmlPlace place; ///< of an element's start tag, or near another node; unknown if the node was not read
    DomTreeNode* parent = nullptr;
    DomTreeNode* firstChild = nullptr;
    DomTreeNode* lastChild = nullptr;
    DomNode* firstAttribute = nullptr;

    DomTreeNode* nextSibling() const { return static_cast<DomTreeNode*>(next); }
};

/// The root at the end of a walk through parents, and its tree. Only the two roots of a tree have no parent.
struct DomRoot : DomTreeNode
{
    DomTree* tree = nullptr;
};

/// The nodes of one document and their storage. Nodes have no destructors and own nothing, so the arena frees them all
/// at once. libxml2's own tree takes five bytes of memory for each byte of a file, and is freed node by node.
class DomTree
{
public:
    DomTree();
    DomTree(const DomTree&) = delete;
    DomTree& operator=(const DomTree&) = delete;

    /// Frees all nodes and the parse error. All handles of nodes become invalid.
    void clear();

    /// Return a new node without a place in the tree. The texts must be literals or lie in the arena.
    DomTreeNode* create(DomKind kind, DomName name, std::string_view value);
    DomNode* createAttribute(DomName name, std::string_view value);

    /// Returns a qualified name, copied into the arena. The name is not checked.
    DomName keepName(std::string_view qualified);

    /// Appends a node without a place as the last child of `parent`. In constant time. Checks nothing.
    static void link(DomTreeNode& parent, DomTreeNode& child);

    /// Returns the root of the node's tree: the document's, or `unplaced`. Linear in the depth.
    static DomRoot& rootOf(DomTreeNode& node);

    /// Returns the storage for the texts of nodes.
    Arena& queryArena() { return arena; }
    DomRoot& queryDocument() { return document; }

    // The error of the last load. Its reason is empty after a success.
    IXMLDOMParseError parseError;

private:
    Arena arena;
    DomRoot document;
    DomRoot unplaced;
};

/// Appends `node` with its content to `out` as XML. An attribute is written as NAME="VALUE".
void writeDom(const DomNode& node, CString& out);

/// Fills an empty tree from a file. On failure empties it, sets its parseError and returns false.
bool buildDom(DomTree& tree, const CString& fileName);
