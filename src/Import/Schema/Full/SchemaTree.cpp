#include "Import/Schema/Full/SchemaTree.h"

// The first entry of each table is empty. The known names get the numbers that are defined in the header.
SchemaTree::SchemaTree() : nodes(1), listed(1), documentations(1)
{
    for (const std::string_view known :
         {"http://www.w3.org/2001/XMLSchema", "http://www.w3.org/2000/10/XMLSchema", "http://www.w3.org/1999/XMLSchema",
          "http://www.w3.org/XML/1998/namespace", "value", "http://schemas.xmlsoap.org/soap/encoding/",
          "http://www.w3.org/2003/05/soap-encoding"})
        names.intern(known);
}

// Only names in no namespace change, because a prefix always means its own namespace. A document with a target
// namespace can still refer to names in no namespace, those of an import without one.
SchemaName SchemaTree::adopted(Index at, SchemaName name) const
{
    if (name.space == 0 && name.local != 0 && !documentOf(at).hasTarget)
        name.space = documentOf(at).space;
    return name;
}

std::vector<SchemaName> SchemaTree::listOf(Index at) const
{
    std::vector<SchemaName> out;
    for (std::size_t i = nodes[at].list; listed[i].local != 0; ++i)
        out.push_back(adopted(at, listed[i]));
    return out;
}

bool SchemaTree::areEqual(Index one, Index other) const
{
    const SchemaDocument& left = documentOf(one);
    const SchemaDocument& right = documentOf(other);
    if (left.elementsQualified != right.elementsQualified || left.attributesQualified != right.attributesQualified)
        return false;
    // The nodes in a component follow it. The first node after them has a parent outside of it, or is in another
    // document.
    const auto isPart = [this](Index at, Index of) { return at < documentOf(of).end && nodes[at].parent >= of; };
    for (Index i = 0;; ++i) {
        const bool isLeft = i == 0 || isPart(one + i, one), isRight = i == 0 || isPart(other + i, other);
        if (!isLeft || !isRight)
            return isLeft == isRight;
        // Parents are compared by their distance. That makes the trees equal, because both are in document order.
        const SchemaNode &a = nodes[one + i], &b = nodes[other + i];
        const bool isSame = a.tag == b.tag && a.occurs == b.occurs && a.flags == b.flags && a.name == b.name &&
                            (i == 0 || a.parent - one == b.parent - other) &&
                            referenceOf(one + i) == referenceOf(other + i) && listOf(one + i) == listOf(other + i) &&
                            documentation(one + i) == documentation(other + i);
        if (!isSame)
            return false;
    }
}

SchemaTree::Index SchemaTree::add(SchemaTag tag, std::uint32_t document, SourcePlace place, Index parent, Index before)
{
    const auto at = static_cast<Index>(nodes.size());
    SchemaNode& node = nodes.emplace_back();
    node.tag = tag;
    node.parent = parent;
    node.line = place.line;
    node.column = place.column;
    node.document = document;
    if (before != 0)
        nodes[before].next = at;
    else if (parent != 0)
        nodes[parent].firstChild = at;
    return at;
}

std::uint32_t SchemaTree::adopt(std::uint32_t document, NameTable::Id space)
{
    // A copy, because push_back() below may move the documents.
    SchemaDocument copy = documents[document];
    const auto shift = static_cast<Index>(nodes.size()) - copy.root;
    const auto moved = [shift](Index at) { return at == 0 ? 0 : at + shift; };
    nodes.reserve(nodes.size() + (copy.end - copy.root));
    for (Index at = copy.root; at < copy.end; ++at) {
        SchemaNode& node = nodes.emplace_back(nodes[at]);
        node.parent = moved(node.parent);
        node.next = moved(node.next);
        node.firstChild = moved(node.firstChild);
        node.document = static_cast<std::uint32_t>(documents.size());
    }
    copy.root += shift;
    copy.end += shift;
    copy.space = space;
    documents.push_back(std::move(copy));
    return static_cast<std::uint32_t>(documents.size() - 1);
}
