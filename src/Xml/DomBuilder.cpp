#include "Xml/DomTree.h"
#include "Xml/XmlParser.h"

#include <functional>
#include <unordered_map>
#include <vector>

namespace {

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\n\r") == std::string_view::npos;
}

/// Makes nodes of what the parser says.
class DomBuilder : public XmlHandler
{
public:
    explicit DomBuilder(DomTree& target) : tree(target), parent(&target.queryDocument()) {}

    void scope(const XmlScope& scope) override
    {
        place = {static_cast<std::uint32_t>(scope.place.line), static_cast<std::uint32_t>(scope.place.column)};
    }
    bool wantsScopes() const override { return true; }
    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    void text(std::string_view piece) override { pending += piece; }
    void cdata(std::string_view text) override { add(DomKind::cdata, "#cdata-section", keep(text)); }
    void comment(std::string_view text) override { add(DomKind::comment, "#comment", keep(text)); }
    void instruction(std::string_view target, std::string_view data) override
    {
        add(DomKind::instruction, keep(target), keep(data));
    }

private:
    struct HashName
    {
        std::size_t operator()(const XmlName& name) const
        {
            return std::hash<const void*>()(name.local) * 31 + std::hash<const void*>()(name.prefix);
        }
    };

    std::string_view keep(std::string_view text) { return tree.queryArena().keep(text); }
    DomName nameOf(const XmlName& name);
    DomTreeNode* create(DomKind kind, DomName name, std::string_view value);
    void add(DomKind kind, std::string_view name, std::string_view value);
    void flushText();

    DomTree& tree;
    DomTreeNode* parent;
    DomPlace place;  // of the last start tag
    CString pending; // the text whose end hasn't been seen yet
    std::unordered_map<XmlName, DomName, HashName> names;
    std::size_t depth = 0;
    std::vector<std::pair<std::size_t, bool>> spaces; // depth of each xml:space in force, and whether it preserves
};

// The same names come again and again: each is stored once for all its nodes.
DomName DomBuilder::nameOf(const XmlName& name)
{
    const auto [place, isNew] = names.try_emplace(name);
    if (isNew) {
        const CString qualified = name.prefix ? CString(name.prefix) + ":" + name.local : name.local;
        place->second = {keep(qualified),
                         static_cast<std::uint32_t>(name.prefix ? std::string_view(name.prefix).size() + 1 : 0)};
    }
    return place->second;
}

DomTreeNode* DomBuilder::create(DomKind kind, DomName name, std::string_view value)
{
    DomTreeNode* const node = tree.create(kind, name, value);
    node->place = place;
    return node;
}

void DomBuilder::startElement(XmlName name, XmlAttributes attributes)
{
    flushText();
    ++depth;
    DomTreeNode* const element = create(DomKind::element, nameOf(name), {});
    DomNode** last = &element->firstAttribute;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const XmlAttribute attribute = attributes[i];
        *last = tree.createAttribute(nameOf(attribute.name), keep(attribute.value));
        if ((*last)->name == "xml:space")
            spaces.emplace_back(depth, attribute.value == "preserve");
        last = &(*last)->next;
    }
    DomTree::link(*parent, *element);
    parent = element;
}

void DomBuilder::endElement()
{
    flushText();
    while (!spaces.empty() && spaces.back().first == depth)
        spaces.pop_back();
    --depth;
    parent = parent->parent;
}

void DomBuilder::add(DomKind kind, std::string_view name, std::string_view value)
{
    flushText();
    DomTree::link(*parent, *create(kind, {name, 0}, value));
}

// Pieces of text that nothing stands between are one node. White space alone is none, unless it is to be preserved.
void DomBuilder::flushText()
{
    if (pending.empty())
        return;
    const bool preserve = !spaces.empty() && spaces.back().second;
    if (preserve || !isBlank(pending))
        DomTree::link(*parent, *create(DomKind::text, {"#text", 0}, keep(pending)));
    pending.clear();
}

} // namespace

bool buildDom(DomTree& tree, const CString& fileName)
{
    DomBuilder builder(tree);
    const std::optional<IXMLDOMParseError> error = parseXmlFile(fileName, builder);
    if (!error)
        return true;
    tree.clear();
    tree.parseError = *error;
    return false;
}
