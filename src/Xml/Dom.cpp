#include "Xml/Dom.h"

#include "Xml/DomTree.h"

#include <new>

// The functions of the handles. They take constant time, except load(), xml(), and those that search attributes, the
// children of a document or the parents of a node.
namespace {

// Status codes of the two failures. The highest bit makes them negative.
constexpr LONG kNullPointer = static_cast<LONG>(0x80004003);
constexpr LONG kFailed = static_cast<LONG>(0x80004005);

// Returns a node with its tree links. An attribute has no children and no place in the tree, and is allocated without
// these members.
const DomTreeNode& linked(const DomNode& node)
{
    static const DomTreeNode unlinked;
    return node.kind == DomKind::attribute ? unlinked : static_cast<const DomTreeNode&>(node);
}

IXMLDOMNode takeNext(DomNode*& next)
{
    DomNode* const node = next;
    if (node)
        next = node->next;
    return IXMLDOMNode(node);
}

// XML 1.0, production [1]: a document has one root element, with comments and instructions around it.
bool isDocumentElementTwice(const DomTreeNode& parent, const DomTreeNode& child)
{
    if (parent.kind != DomKind::document || child.kind != DomKind::element)
        return false;
    const DomTreeNode* other = parent.firstChild;
    while (other && other->kind != DomKind::element)
        other = other->nextSibling();
    return other != nullptr;
}

void append(DomTreeNode& parent, DomTreeNode& child)
{
    bool fits = (parent.kind == DomKind::element || parent.kind == DomKind::document) && child.parent &&
                child.parent->kind == DomKind::unplaced && !isDocumentElementTwice(parent, child);
    // The walk to the root finds a cycle, and the tree that the parent belongs to. A node without a parent is always a
    // DomRoot, which the cast below relies on.
    const DomTreeNode* top = &parent;
    for (; fits && top->parent; top = top->parent)
        fits = top != &child;
    if (!fits || static_cast<const DomRoot&>(*top).tree != DomTree::rootOf(child).tree)
        throw ComError(kFailed, "the node can't stand there");
    DomTree::link(parent, child);
}

} // namespace

DomNode& IXMLDOMNode::get() const
{
    if (!pointer)
        throw ComError(kNullPointer, "a null node was used");
    return *pointer;
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

XmlPlace IXMLDOMNode::place() const
{
    return linked(get()).place;
}

IXMLDOMNamedNodeMap IXMLDOMNode::attributes() const
{
    return IXMLDOMNamedNodeMap(linked(get()).firstAttribute);
}

IXMLDOMNodeList IXMLDOMNode::childNodes() const
{
    return IXMLDOMNodeList(linked(get()).firstChild);
}

IXMLDOMNode IXMLDOMNode::firstChild() const
{
    return IXMLDOMNode(linked(get()).firstChild);
}

IXMLDOMNode IXMLDOMNode::nextSibling() const
{
    return IXMLDOMNode(linked(get()).next);
}

IXMLDOMNode IXMLDOMNode::appendChild(IXMLDOMNode child) const
{
    if (get().kind == DomKind::attribute || child.get().kind == DomKind::attribute)
        throw ComError(kFailed, "an attribute is no child and has none");
    append(static_cast<DomTreeNode&>(get()), static_cast<DomTreeNode&>(child.get()));
    return child;
}

CString IXMLDOMNode::xml() const
{
    CString out;
    writeDom(get(), out);
    return out;
}

IXMLDOMElement::IXMLDOMElement(IXMLDOMNode node) : IXMLDOMNode(node)
{
    if (node && get().kind != DomKind::element)
        *this = {};
}

void IXMLDOMElement::setAttribute(std::string_view name, std::string_view value) const
{
    auto& element = static_cast<DomTreeNode&>(get());
    DomTree& tree = *DomTree::rootOf(element).tree;
    const std::string_view kept = tree.queryArena().keep(isXmlText(value) ? value : std::string_view(toXmlText(value)));
    // The link to the attribute, or the one to which a new attribute is appended.
    DomNode** place = &element.firstAttribute;
    while (*place && (*place)->name != name)
        place = &(*place)->next;
    if (*place)
        (*place)->value = kept;
    else
        *place = tree.createAttribute(tree.keepName(name), kept);
}

IXMLDOMNode IXMLDOMNamedNodeMap::getNamedItem(std::string_view name) const
{
    DomNode* node = first;
    while (node && node->name != name)
        node = node->next;
    return IXMLDOMNode(node);
}

IXMLDOMNode IXMLDOMNamedNodeMap::nextNode()
{
    return takeNext(next);
}

IXMLDOMNode IXMLDOMNodeList::nextNode()
{
    return takeNext(next);
}

// Null instead of an exception, so that XmlDocument words the failure.
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
    // Comments and instructions may stand before it.
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
