#include "Platform/DomTree.h"

#include <array>

namespace {

using Escapes = std::array<const char*, 256>;

// In attribute values white space other than blanks would be read back as a blank.
constexpr Escapes attributeEscapes()
{
    Escapes escapes = {};
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['"'] = "&quot;";
    escapes['\t'] = "&#9;";
    escapes['\n'] = "&#10;";
    escapes['\r'] = "&#13;";
    return escapes;
}

constexpr Escapes textEscapes()
{
    Escapes escapes = {};
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['\r'] = "&#13;";
    return escapes;
}

constexpr Escapes kAttributeEscapes = attributeEscapes();
constexpr Escapes kTextEscapes = textEscapes();

void writeEscaped(std::string_view text, const Escapes& escapes, CString& out)
{
    std::size_t done = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char* const escape = escapes[static_cast<unsigned char>(text[at])];
        if (!escape)
            continue;
        out.append(text, done, at - done);
        out += escape;
        done = at + 1;
    }
    out.append(text, done);
}

void writeStart(const DomTreeNode& element, CString& out)
{
    out += '<';
    out += element.name;
    for (const DomNode* attribute = element.firstAttribute; attribute; attribute = attribute->next) {
        out += ' ';
        writeDom(*attribute, out);
    }
    out += element.firstChild ? ">" : "/>";
}

void writeEnd(const DomTreeNode& element, CString& out)
{
    out += "</";
    out += element.name;
    out += '>';
}

void writeInstruction(const DomNode& node, CString& out)
{
    out += "<?";
    out += node.name;
    if (!node.value.empty())
        out += ' ';
    out += node.value;
    out += "?>";
}

// What stands where the node begins; the end tag of an element with content is left to the caller.
void writeNode(const DomNode& node, CString& out)
{
    switch (node.kind) {
    case DomKind::element:
        return writeStart(static_cast<const DomTreeNode&>(node), out);
    case DomKind::attribute:
        out += node.name;
        out += "=\"";
        writeEscaped(node.value, kAttributeEscapes, out);
        out += '"';
        return;
    case DomKind::text:
        return writeEscaped(node.value, kTextEscapes, out);
    case DomKind::cdata:
        out.append("<![CDATA[").append(node.value).append("]]>");
        return;
    case DomKind::comment:
        out.append("<!--").append(node.value).append("-->");
        return;
    case DomKind::instruction:
        return writeInstruction(node, out);
    case DomKind::document:
    case DomKind::unplaced:
        return;
    }
}

void writeTree(const DomTreeNode& top, CString& out)
{
    const DomTreeNode* node = &top;
    for (;;) {
        writeNode(*node, out);
        if (node->firstChild) {
            node = node->firstChild;
            continue;
        }
        while (node != &top && !node->next) {
            node = node->parent;
            if (node->kind == DomKind::element)
                writeEnd(*node, out);
        }
        if (node == &top)
            return;
        node = node->nextSibling();
    }
}

} // namespace

void writeDom(const DomNode& node, CString& out)
{
    if (node.kind == DomKind::attribute)
        writeNode(node, out);
    else
        writeTree(static_cast<const DomTreeNode&>(node), out);
}
