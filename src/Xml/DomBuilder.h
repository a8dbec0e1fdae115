#pragma once

#include "Xml/Dom.h"
#include "Xml/DomTree.h"
#include "Xml/XmlParser.h"

#include <functional>
#include <unordered_map>
#include <vector>

/// Builds the tree from the parser's events. With a `take`, memory is bounded by the largest child of the root instead
/// of the whole document. For one parse only, because names are cached under the pointers that the parse interns.
/// Importing a type document of 56 MB takes 160 MB, and took 311 MB with a tree of the whole document.
class DomBuilder : public XmlHandler
{
public:
    /// Receives a child of the root, which is valid until the call returns, as are its texts.
    using TakeChild = std::function<void(const IXMLDOMNode&)>;

    /// Builds a document in `tree`, which must be empty. With `take`, only the root element stays there, and each of
    /// its children is passed to `take` as soon as it is complete. `tree` must outlive the builder.
    explicit DomBuilder(DomTree& tree, TakeChild take = {}) :
        tree(tree), take(std::move(take)), parent(&tree.queryDocument())
    {}

    /// Returns the root element, null before its start tag.
    IXMLDOMNode queryRoot() const { return root; }

    void startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope) override;
    void endElement() override;
    void text(std::string_view piece) override { pending += piece; }
    // A section is a node of its own, which may be white space and is not joined with the text around it.
    void cdata(std::string_view text) override { add(DomKind::cdata, "#cdata-section", text); }
    void comment(std::string_view text) override { add(DomKind::comment, "#comment", text); }
    void instruction(std::string_view target, std::string_view data) override
    {
        add(DomKind::instruction, currentTree().queryArena().keep(target), data);
    }

private:
    // Interned names compare by address, and no source chooses addresses, so the hash needs no seed.
    struct HashName
    {
        std::size_t operator()(const XmlName& name) const
        {
            return std::hash<const void*>()(name.local) * 31 + std::hash<const void*>()(name.prefix);
        }
    };

    // Returns the tree in whose storage a new node is allocated: `pieces` for all nodes below the root if they are
    // passed on.
    DomTree& currentTree() { return take && depth > 0 ? pieces : tree; }
    DomName nameOf(const XmlName& name);
    DomTreeNode* create(DomKind kind, DomName name, std::string_view value);
    void add(DomKind kind, std::string_view name, std::string_view value);
    // link() places a new node, finish() passes it on once it is complete.
    void link(DomTreeNode& node);
    void finish(DomTreeNode& node);
    void flushText();

    DomTree& tree;
    DomTree pieces;             // children of the root that are passed on
    std::size_t pieceCount = 0; // nodes made since `pieces` was emptied
    TakeChild take;
    // The open element, or the document. A new node becomes its child.
    DomTreeNode* parent;
    IXMLDOMNode root;
    XmlPlace place;  // of the last start tag
    CString pending; // text that more pieces may follow
    // The names so far, with copies of their texts.
    std::unordered_map<XmlName, DomName, HashName> names;
    std::size_t depth = 0;                            // open elements
    std::vector<std::pair<std::size_t, bool>> spaces; // xml:space in scope: element depth, "preserve" or not
};
