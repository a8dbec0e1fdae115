#include "Platform/Xml/Dom.h"

#include "Platform/Xml/DomTree.h"

#include <new>

namespace {

constexpr LONG kNullPointer = static_cast<LONG>(0x80004003);
constexpr LONG kFailed = static_cast<LONG>(0x80004005);

// Null for an attribute, which has neither children nor a place in the tree.
DomTreeNode* treeNode(DomNode* node)
{
    return node->kind == DomKind::attribute ? nullptr : static_cast<DomTreeNode*>(node);
}

DomNode* findAttribute(DomNode* first, std::string_view name)
{
    while (first && first->name != name)
        first = first->next;
    return first;
}

bool isDocumentElementTwice(const DomTreeNode& parent, const DomTreeNode& child)
{
    if (parent.kind != DomKind::document || child.kind != DomKind::element)
        return false;
    const DomTreeNode* other = parent.firstChild;
    while (other && (other->kind != DomKind::element || other == &child))
        other = other->nextSibling();
    return other != nullptr;
}

bool holds(const DomTreeNode* node, const DomTreeNode* inner)
{
    while (inner && inner != node)
        inner = inner->parent;
    return inner != nullptr;
}

void append(DomTreeNode& parent, DomTreeNode& child)
{
    if (holds(&child, &parent) || isDocumentElementTwice(parent, child) || child.kind == DomKind::document ||
        (parent.kind != DomKind::element && parent.kind != DomKind::document))
        throw ComError(kFailed, "the node can't stand there");
    DomTree& from = *DomTree::rootOf(child).tree;
    DomTree& to = *DomTree::rootOf(parent).tree;
    if (&from != &to)
        to.share(from);
    DomTree::unlink(child);
    DomTree::link(parent, child);
}

} // namespace

DomNode& IXMLDOMNode::get() const
{
    if (!pointer)
        throw ComError(kNullPointer, "a null node was used");
    return *pointer;
}

bool IXMLDOMNode::isElement() const
{
    return get().kind == DomKind::element;
}

std::string_view IXMLDOMNode::nodeName() const
{
    return get().name;
}

std::string_view IXMLDOMNode::baseName() const
{
    const DomNode& node = get();
    if (node.kind != DomKind::element && node.kind != DomKind::attribute)
        return {};
    return node.name.substr(node.prefixLength);
}

std::string_view IXMLDOMNode::nodeValue() const
{
    return get().value;
}

IXMLDOMNamedNodeMap IXMLDOMNode::attributes() const
{
    DomTreeNode* const node = treeNode(&get());
    return IXMLDOMNamedNodeMap(node ? node->firstAttribute : nullptr);
}

IXMLDOMNodeList IXMLDOMNode::childNodes() const
{
    return {treeNode(&get()), false, {}};
}

bool IXMLDOMNode::hasChildNodes() const
{
    return static_cast<bool>(firstChild());
}

IXMLDOMNode IXMLDOMNode::firstChild() const
{
    DomTreeNode* const node = treeNode(&get());
    return IXMLDOMNode(node ? node->firstChild : nullptr);
}

IXMLDOMNode IXMLDOMNode::nextSibling() const
{
    DomTreeNode* const node = treeNode(&get());
    return IXMLDOMNode(node ? node->next : nullptr);
}

IXMLDOMNode IXMLDOMNode::appendChild(IXMLDOMNode child) const
{
    DomTreeNode* const parent = treeNode(&get());
    DomTreeNode* const node = treeNode(&child.get());
    if (!parent || !node)
        throw ComError(kFailed, "an attribute is no child and has none");
    append(*parent, *node);
    return child;
}

CString IXMLDOMNode::xml() const
{
    CString out;
    appendXml(out);
    return out;
}

void IXMLDOMNode::appendXml(CString& out) const
{
    writeDom(get(), out);
}

IXMLDOMElement::IXMLDOMElement(IXMLDOMNode node) : IXMLDOMNode(node && node.isElement() ? node : IXMLDOMNode()) {}

void IXMLDOMElement::setAttribute(std::string_view name, std::string_view value) const
{
    auto& element = static_cast<DomTreeNode&>(get());
    DomTree& tree = *DomTree::rootOf(element).tree;
    const std::string_view kept = tree.queryArena().keep(isXmlText(value) ? value : std::string_view(toXmlText(value)));
    DomNode** place = &element.firstAttribute;
    while (*place && (*place)->name != name)
        place = &(*place)->next;
    if (*place)
        (*place)->value = kept;
    else
        *place = tree.createAttribute(tree.keepName(name), kept);
}

IXMLDOMNodeList IXMLDOMElement::getElementsByTagName(std::string_view name) const
{
    return {static_cast<DomTreeNode*>(&get()), true, name};
}

IXMLDOMNode IXMLDOMNamedNodeMap::getNamedItem(std::string_view name) const
{
    return IXMLDOMNode(findAttribute(first, name));
}

long IXMLDOMNamedNodeMap::length() const
{
    long count = 0;
    for (const DomNode* attribute = first; attribute; attribute = attribute->next)
        ++count;
    return count;
}

IXMLDOMNode IXMLDOMNamedNodeMap::item(long index) const
{
    DomNode* attribute = index < 0 ? nullptr : first;
    for (; attribute && index > 0; --index)
        attribute = attribute->next;
    return IXMLDOMNode(attribute);
}

IXMLDOMNode IXMLDOMNamedNodeMap::nextNode()
{
    DomNode* const attribute = next;
    if (attribute)
        next = attribute->next;
    return IXMLDOMNode(attribute);
}

IXMLDOMNodeList::IXMLDOMNodeList(DomNode* from, bool all, std::string_view ofName) :
    root(from), descendants(all), name(ofName)
{
    next = first();
}

DomNode* IXMLDOMNodeList::first() const
{
    if (!root)
        return nullptr;
    return descendants ? after(root) : static_cast<DomTreeNode*>(root)->firstChild;
}

DomNode* IXMLDOMNodeList::after(DomNode* node) const
{
    if (!descendants)
        return node->next;
    const auto* const top = static_cast<DomTreeNode*>(root);
    DomTreeNode* found = static_cast<DomTreeNode*>(node);
    do {
        found = nextInDocument(found, top);
    } while (found && (found->kind != DomKind::element || found->name != name));
    return found;
}

long IXMLDOMNodeList::length() const
{
    if (!descendants)
        return root ? static_cast<long>(static_cast<DomTreeNode*>(root)->childCount) : 0;
    long count = 0;
    for (DomNode* node = first(); node; node = after(node))
        ++count;
    return count;
}

IXMLDOMNode IXMLDOMNodeList::item(long index) const
{
    if (index < 0)
        return {};
    if (!itemNode || index < itemIndex) {
        itemIndex = 0;
        itemNode = first();
    }
    for (; itemNode && itemIndex < index; ++itemIndex)
        itemNode = after(itemNode);
    return IXMLDOMNode(itemNode);
}

IXMLDOMNode IXMLDOMNodeList::nextNode()
{
    DomNode* const node = next;
    if (node)
        next = after(node);
    return IXMLDOMNode(node);
}

IXMLDOMDocument IXMLDOMDocument::create()
{
    try {
        return IXMLDOMDocument(std::make_shared<DomTree>());
    } catch (const std::bad_alloc&) {
        return {};
    }
}

DomTree& IXMLDOMDocument::get() const
{
    if (!tree)
        throw ComError(kNullPointer, "a null document was used");
    return *tree;
}

bool IXMLDOMDocument::load(const CString& fileName) const
{
    get().clear();
    return buildDom(get(), fileName);
}

const IXMLDOMParseError& IXMLDOMDocument::parseError() const
{
    return get().parseError;
}

IXMLDOMElement IXMLDOMDocument::documentElement() const
{
    DomTreeNode* node = get().queryDocument().firstChild;
    while (node && node->kind != DomKind::element)
        node = node->nextSibling();
    return IXMLDOMElement(IXMLDOMNode(node));
}

IXMLDOMElement IXMLDOMDocument::createElement(std::string_view name) const
{
    DomTree& owner = get();
    return IXMLDOMElement(IXMLDOMNode(owner.create(DomKind::element, owner.keepName(name), {})));
}

IXMLDOMNode IXMLDOMDocument::appendChild(IXMLDOMNode child) const
{
    return IXMLDOMNode(&get().queryDocument()).appendChild(child);
}

CString IXMLDOMDocument::xml() const
{
    return IXMLDOMNode(&get().queryDocument()).xml();
}

void IXMLDOMDocument::appendXml(CString& out) const
{
    IXMLDOMNode(&get().queryDocument()).appendXml(out);
}
