#include "Platform/Xml/DomTree.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t kSmallestPiece = 8192;
constexpr std::size_t kDoublings = 7;

} // namespace

void* Arena::allocateAnew(std::size_t bytes)
{
    const std::size_t usual = kSmallestPiece << std::min(pieces.size(), kDoublings);
    const std::size_t size = std::max(bytes, usual);
    pieces.emplace_back(new char[size]);
    char* const piece = pieces.back().get();
    if (bytes < usual) { // a long text fills a piece of its own, and the one in hand goes on
        end = piece + size;
        room = size - bytes;
    }
    return piece;
}

std::string_view Arena::keep(std::string_view text)
{
    if (text.empty())
        return {};
    char* const place = static_cast<char*>(allocate(text.size()));
    std::memcpy(place, text.data(), text.size());
    return {place, text.size()};
}

DomTree::DomTree()
{
    document.kind = DomKind::document;
    document.name = "#document";
    unplaced.kind = DomKind::unplaced;
    document.tree = unplaced.tree = this;
    clear();
}

void DomTree::clear()
{
    own = std::make_shared<Arena>();
    shared.clear();
    document.firstChild = nullptr;
    document.childCount = 0;
    parseError = {};
}

DomTreeNode* DomTree::create(DomKind kind, DomName name, std::string_view value)
{
    auto* const node = new (queryArena().allocate(sizeof(DomTreeNode))) DomTreeNode;
    node->name = name.text;
    node->prefixLength = name.prefixLength;
    node->value = value;
    node->kind = kind;
    node->parent = &unplaced;
    return node;
}

DomNode* DomTree::createAttribute(DomName name, std::string_view value)
{
    auto* const node = new (queryArena().allocate(sizeof(DomNode))) DomNode;
    node->name = name.text;
    node->prefixLength = name.prefixLength;
    node->value = value;
    node->kind = DomKind::attribute;
    return node;
}

DomName DomTree::keepName(std::string_view qualified)
{
    const std::size_t colon = qualified.find(':');
    const std::size_t prefixLength = colon == std::string_view::npos ? 0 : colon + 1;
    return {queryArena().keep(qualified), static_cast<std::uint32_t>(prefixLength)};
}

void DomTree::link(DomTreeNode& parent, DomTreeNode& child)
{
    child.parent = &parent;
    child.next = nullptr;
    ++parent.childCount;
    if (!parent.firstChild) {
        parent.firstChild = &child;
        child.previous = &child;
        return;
    }
    DomTreeNode* const last = parent.firstChild->previous;
    last->next = &child;
    child.previous = last;
    parent.firstChild->previous = &child;
}

void DomTree::unlink(DomTreeNode& child)
{
    DomTreeNode& parent = *child.parent;
    if (parent.kind == DomKind::unplaced)
        return;
    --parent.childCount;
    if (child.next)
        child.nextSibling()->previous = child.previous;
    else
        parent.firstChild->previous = child.previous;
    if (parent.firstChild == &child)
        parent.firstChild = child.nextSibling();
    else
        child.previous->next = child.next;
}

DomRoot& DomTree::rootOf(DomTreeNode& node)
{
    DomTreeNode* top = &node;
    while (top->parent)
        top = top->parent;
    return static_cast<DomRoot&>(*top);
}

void DomTree::share(const DomTree& other)
{
    const auto keep = [this](const std::shared_ptr<Arena>& arena) {
        if (arena != own && std::find(shared.begin(), shared.end(), arena) == shared.end())
            shared.push_back(arena);
    };
    keep(other.own);
    for (const std::shared_ptr<Arena>& arena : other.shared)
        keep(arena);
}

DomTreeNode* nextInDocument(DomTreeNode* node, const DomTreeNode* top)
{
    if (node->firstChild)
        return node->firstChild;
    while (node != top && !node->next)
        node = node->parent;
    return node == top ? nullptr : node->nextSibling();
}
