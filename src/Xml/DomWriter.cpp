#include "Xml/DomTree.h"
#include "Xml/XmlEscape.h"

namespace {

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

// Writes the text at which a node begins. The caller writes the end tag of an element with content, so that no depth of
// nesting needs recursion. CDATA sections, comments and instructions come from parsed documents only, so their values
// can't contain what ends them.
void writeNode(const DomNode& node, CString& out)
{
    switch (node.kind) {
    case DomKind::element:
        return writeStart(static_cast<const DomTreeNode&>(node), out);
    case DomKind::attribute:
        out += node.name;
        out += "=\"";
        appendXmlValue(out, node.value);
        out += '"';
        return;
    case DomKind::text:
        return appendXmlContent(out, node.value);
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

// Depth first without recursion: down to the first child, else to the next sibling, of the node or of the nearest
// ancestor that has one. Parents are the stack. Linear in the nodes.
void writeTree(const DomTreeNode& top, CString& out)
{
    const DomTreeNode* node = &top;
    for (;;) {
        writeNode(*node, out);
        if (node->firstChild) {
            node = node->firstChild;
            continue;
        }
        // Up through elements that end here. The top itself is never left, even if it has siblings.
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
