#include "Xml/DomTree.h"

#include <new>

DomTree::DomTree()
{
    document.kind = DomKind::document;
    document.name = "#document";
    unplaced.kind = DomKind::unplaced;
    document.tree = unplaced.tree = this;
}

// `unplaced` lists no children, so it needs no reset.
void DomTree::clear()
{
    arena.release();
    document.firstChild = document.lastChild = nullptr;
    parseError = {};
}

DomTreeNode* DomTree::create(DomKind kind, DomName name, std::string_view value)
{
    // The parent is `unplaced` until the node is linked, so that rootOf() finds the node's tree.
    return new (arena.allocate(sizeof(DomTreeNode), alignof(DomTreeNode)))
        DomTreeNode{{name.text, value, nullptr, name.prefixLength, kind}, {}, &unplaced};
}

DomNode* DomTree::createAttribute(DomName name, std::string_view value)
{
    return new (arena.allocate(sizeof(DomNode), alignof(DomNode)))
        DomNode{name.text, value, nullptr, name.prefixLength, DomKind::attribute};
}

DomName DomTree::keepName(std::string_view qualified)
{
    // The prefix ends at the first colon (Namespaces in XML 1.0, production [7] QName).
    const std::size_t colon = qualified.find(':');
    const std::size_t prefixLength = colon == std::string_view::npos ? 0 : colon + 1;
    return {arena.keep(qualified), static_cast<std::uint32_t>(prefixLength)};
}

void DomTree::link(DomTreeNode& parent, DomTreeNode& child)
{
    child.parent = &parent;
    if (parent.lastChild)
        parent.lastChild->next = &child;
    else
        parent.firstChild = &child;
    parent.lastChild = &child;
}

// Only the two roots have no parent, which makes the cast safe.
DomRoot& DomTree::rootOf(DomTreeNode& node)
{
    DomTreeNode* top = &node;
    while (top->parent)
        top = top->parent;
    return static_cast<DomRoot&>(*top);
}
