#include "Import/Json/JsonSchemaMsg.h"

#include "Import/Json/JsonTypes.h"

void JsonSchemaMessage::read(const CString& source, const CString&, SourceTypes& types, SourceReport& report)
{
    JsonDocuments documents(types, report);
    const JsonNode::Index root = documents.load(source);
    const JsonTree& tree = documents.tree;
    JsonTypes schemas(documents, types, report);
    const JsonTypes::Shape shape = schemas.shapeOf(root, schemas.nameOf(root));
    const bool isPlain = shape == JsonTypes::Shape() && tree.find(root, JsonWord::type) == 0;
    if (!isPlain)
        schemas.addCandidate(root, {});
    for (const JsonWord holder : {JsonWord::defs, JsonWord::definitions})
        schemas.declareMembers(tree.find(root, holder), isPlain || !queryRoot().empty());
    schemas.finish();
}
