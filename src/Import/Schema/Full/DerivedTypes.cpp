#include "Import/Schema/Full/DerivedTypes.h"

const std::vector<DerivedTypes::Index>& DerivedTypes::of(Index type)
{
    if (!isCollected)
        collect();
    isCollected = true;
    static const std::vector<Index> none;
    const auto found = derived.find(type);
    return found == derived.end() ? none : found->second;
}

void DerivedTypes::collect()
{
    const SchemaTree& tree = set.queryTree();
    const auto add = [&](Index type) {
        // A redefined type is left out; its redefinition has its name.
        if (tree[type].tag != SchemaTag::complexType || set.find(SchemaSet::type, set.nameOf(type), 0) != type)
            return;
        const Index content = tree.childOf(type, SchemaTag::complexContent, SchemaTag::simpleContent);
        const Index derivation = tree.childOf(content, SchemaTag::extension, SchemaTag::restriction);
        const SchemaName base = content == 0 ? SchemaName() : tree.referenceOf(derivation);
        if (base.local != 0)
            if (const Index found = set.find(SchemaSet::type, base, derivation); found != 0 && found != type)
                derived[found].push_back(type);
    };
    for (const SchemaDocument& document : tree.documents) {
        if (document.root == 0)
            continue;
        for (Index at = tree[document.root].firstChild; at != 0; at = tree[at].next) {
            add(at);
            if (tree[at].tag == SchemaTag::redefine)
                for (Index inner = tree[at].firstChild; inner != 0; inner = tree[inner].next)
                    add(inner);
        }
    }
}
