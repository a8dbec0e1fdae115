#pragma once

#include "Platform/Xml/Dom.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// Storage that only grows, in pieces that double, and goes at once. The first piece is part of it, so that a small
/// document costs no further allocation.
class Arena
{
public:
    Arena() : end(firstPiece + sizeof firstPiece), room(sizeof firstPiece) {}
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    /// `bytes` bytes, aligned for a node.
    void* allocate(std::size_t bytes)
    {
        const std::size_t rounded = (bytes + kAlignment - 1) / kAlignment * kAlignment;
        if (rounded > room)
            return allocateAnew(rounded);
        room -= rounded;
        return end - room - rounded;
    }

    /// A copy of `text`.
    std::string_view keep(std::string_view text);

private:
    static constexpr std::size_t kAlignment = alignof(void*);

    void* allocateAnew(std::size_t bytes);

    std::vector<std::unique_ptr<char[]>> pieces;
    char* end;
    std::size_t room; // before `end`
    alignas(kAlignment) char firstPiece[4096];
};

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
    DomTreeNode* parent = nullptr;
    DomTreeNode* previous = nullptr; ///< the previous sibling; of the first one: the last
    DomTreeNode* firstChild = nullptr;
    DomNode* firstAttribute = nullptr;
    std::size_t childCount = 0;

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

    /// Forgets all nodes; the storage goes with the last tree that nodes were moved to.
    void clear();

    /// A node that stands nowhere yet. The texts must be literals or lie in the arena.
    DomTreeNode* create(DomKind kind, DomName name, std::string_view value);
    DomNode* createAttribute(DomName name, std::string_view value);

    /// A copy of a qualified name.
    DomName keepName(std::string_view qualified);

    /// Puts a node that stands nowhere behind the last child of `parent`.
    static void link(DomTreeNode& parent, DomTreeNode& child);

    /// Takes a node out of the list of its parent, if it stands in one.
    static void unlink(DomTreeNode& child);

    /// The end of the climb from a node.
    static DomRoot& rootOf(DomTreeNode& node);

    /// Keeps the other tree's storage too, for nodes that move here.
    void share(const DomTree& other);

    Arena& queryArena() { return *own; }
    DomRoot& queryDocument() { return document; }

    IXMLDOMParseError parseError;

private:
    std::shared_ptr<Arena> own;
    std::vector<std::shared_ptr<Arena>> shared; // of trees that nodes came from
    DomRoot document;
    DomRoot unplaced;
};

/// The node after `node` in document order, not leaving `top`; null at the end.
DomTreeNode* nextInDocument(DomTreeNode* node, const DomTreeNode* top);

/// Appends `node` and all that is in it to `out` as XML text.
void writeDom(const DomNode& node, CString& out);

/// Fills an empty tree with a file, or sets its parseError and answers false.
bool buildDom(DomTree& tree, const CString& fileName);
