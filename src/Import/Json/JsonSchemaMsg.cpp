#include "Import/Json/JsonSchemaMsg.h"

void JsonSchemaMessage::readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                                      SourceTypes&, SourceReport&)
{
    const JsonTree& tree = documents.tree;
    for (Index source = 0; source < roots.size(); ++source) {
        schemas.setSource(source);
        const Index root = roots[source];
        const JsonTypes::Shape shape = schemas.shapeOf(root, schemas.nameOf(root));
        // A document without a type of its own only holds definitions, which become the candidates instead.
        const bool isPlain = shape == JsonTypes::Shape() && tree.find(root, JsonWord::type) == 0;
        if (!isPlain)
            schemas.addCandidate(root, {});
        for (const JsonWord holder : {JsonWord::defs, JsonWord::definitions})
            schemas.declareMembers(tree.find(root, holder), isPlain || !queryRoot().empty());
    }
    schemas.finish();
}
