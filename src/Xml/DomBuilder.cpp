#include "Xml/DomBuilder.h"

// Text is gathered until the next event that is not text, so each event first flushes it. `parent` is the open element.
// At its end tag, the element around it becomes the open one again, so only xml:space needs a stack. With a `take`, a
// child of the root is passed on when it is complete.
namespace {

constexpr std::size_t kManyPieces = 512; // nodes after which their memory is reused

// Only XML's white space, production [3] S. A no-break space is text.
bool isBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\n\r") == std::string_view::npos;
}

} // namespace

// Stores each name once, because most nodes repeat a few names. Interned names compare by address. They are kept with
// the document, because pieces are freed while the parse goes on.
DomName DomBuilder::nameOf(const XmlName& name)
{
    const auto [place, isNew] = names.try_emplace(name);
    if (isNew) {
        place->second = {tree.queryArena().keep(name.qualified()),
                         static_cast<std::uint32_t>(name.prefix ? std::string_view(name.prefix).size() + 1 : 0)};
    }
    return place->second;
}

DomTreeNode* DomBuilder::create(DomKind kind, DomName name, std::string_view value)
{
    DomTree& target = currentTree();
    DomTreeNode* const node = target.create(kind, name, target.queryArena().keep(value));
    node->place = place;
    ++pieceCount;
    return node;
}

void DomBuilder::startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope)
{
    place = scope.place();
    flushText();
    DomTree& target = currentTree();
    DomTreeNode* const element = create(DomKind::element, nameOf(name), {});
    if (depth++ == 0)
        root = IXMLDOMNode(element);
    DomNode** last = &element->firstAttribute;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const XmlAttribute attribute = attributes[i];
        *last = target.createAttribute(nameOf(attribute.name), target.queryArena().keep(attribute.value));
        if ((*last)->name == "xml:space")
            spaces.emplace_back(depth, attribute.value == "preserve");
        last = &(*last)->next;
    }
    link(*element);
    parent = element;
}

void DomBuilder::endElement()
{
    flushText();
    // An xml:space ends with the element that has it (XML 1.0, section 2.10).
    while (!spaces.empty() && spaces.back().first == depth)
        spaces.pop_back();
    --depth;
    DomTreeNode& element = *parent;
    parent = element.parent;
    finish(element);
}

void DomBuilder::add(DomKind kind, std::string_view name, std::string_view value)
{
    flushText();
    DomTreeNode& node = *create(kind, {name, 0}, value);
    link(node);
    finish(node);
}

// A child of the root that is passed on has a parent, which does not list it, because its storage is reused.
void DomBuilder::link(DomTreeNode& node)
{
    if (take && depth == 1 + (node.kind == DomKind::element))
        node.parent = parent;
    else
        DomTree::link(*parent, node);
}

// Passes on a complete child of the root. Storage is reused after some hundred nodes only, because each release frees
// the chunks of the arena.
void DomBuilder::finish(DomTreeNode& node)
{
    if (!take || depth != 1)
        return;
    take(IXMLDOMNode(&node));
    if (pieceCount < kManyPieces)
        return;
    pieces.clear();
    pieceCount = 0;
}

// Adds the pending pieces as one text node. White space alone makes no node unless it is preserved. Pieces are joined
// first: libxml2 cuts a text at the ends of its buffer and at references, so blank pieces may belong to a text that
// isn't blank.
void DomBuilder::flushText()
{
    if (pending.empty())
        return;
    const bool preserve = !spaces.empty() && spaces.back().second;
    if (preserve || !isBlank(pending)) {
        DomTreeNode& node = *create(DomKind::text, {"#text", 0}, pending);
        link(node);
        finish(node);
    }
    pending.clear();
}

bool buildDom(DomTree& tree, const CString& fileName)
{
    DomBuilder builder(tree);
    const std::optional<IXMLDOMParseError> error = parseXmlFile(fileName, builder);
    if (!error)
        return true;
    // No part of a document that isn't well-formed is kept.
    tree.clear();
    tree.parseError = *error;
    return false;
}
