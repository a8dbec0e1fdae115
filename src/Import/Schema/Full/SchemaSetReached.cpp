// SchemaSet: records which components are reached, because only their losses are reported. Only what the requested
// types reach is imported, so a loss elsewhere must not fail an import with --strict.
#include "Import/Schema/Full/SchemaSet.h"

void SchemaSet::recordReached(bool withMessages)
{
    reached.resize(tree.size());
    areMessagesReached = withMessages;
}

// In the report, the component of a message is its name, not a node. The elements of messages are in documents without
// a root.
void SchemaSet::markReached(Index component)
{
    reached[component] = true;
    const std::uint32_t document = tree[component].document, first = firstOfFile[document];
    if (tree.documents[document].root == 0)
        reachedMessages.insert(tree[component].name);
    else if (first != document) // the report knows the components of a file by those of its first document
        reached[component - tree.documents[document].root + tree.documents[first].root] = true;
}

bool SchemaSet::isReached(SourceReport::Component component) const
{
    if (const auto message = WsdlReader::messageOf(component))
        return areMessagesReached || (*message != 0 && reachedMessages.contains(*message));
    if (component >= reached.size()) // of a document that was left out
        return false;
    if (reached[component])
        return true;
    const auto kind = kindOf(tree[component].tag);
    return kind && tree[component].hasName() && reached[find(*kind, nameOf(component), tree[component].parent)];
}

// Returns for each node the top-level component that contains it; 0 if there is none.
std::vector<SchemaSet::Index> SchemaSet::findComponents() const
{
    std::vector<Index> components(tree.size());
    for (Index at = 1; at < components.size(); ++at) {
        const Index parent = tree[at].parent; // comes before it
        const bool isTop = tree[parent].tag == SchemaTag::schema || tree[parent].tag == SchemaTag::redefine;
        components[at] = !isTop ? components[parent] : kindOf(tree[at].tag) ? at : 0;
    }
    return components;
}
