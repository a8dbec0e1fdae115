#include "Import/Json/OpenApiMsg.h"

#include "Import/Json/ApiMessages.h"

void OpenApiMessage::readDocuments(std::span<const Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                                   SourceTypes& types, SourceReport& report)
{
    const JsonTree& tree = documents.tree;
    AvroTypes avro(documents, schemas, types, report);
    ApiMessages messages(documents, schemas, avro);
    for (Index source = 0; source < roots.size(); ++source) {
        const Index root = roots[source];
        if (root == 0)
            continue;
        const CString& file = report.fileNameOf(tree[root].document);
        const auto refuse = [&file](const CString& reason) {
            throw SourceRefusal{file + ": " + reason + ".", {file, reason}};
        };
        const std::string_view version = tree.text(tree.find(root, JsonWord::openapi));
        if (tree.find(root, JsonWord::swagger) != 0)
            refuse("it is Swagger 2.0; convert it to OpenAPI 3 first");
        if (version.empty() && tree.find(root, JsonWord::asyncapi) == 0)
            refuse("it is no OpenAPI and no AsyncAPI document");
        // In OpenAPI 3.0 a "$ref" replaces its siblings; 3.1 follows JSON Schema 2020-12.
        documents.setIgnoresSiblings(root, version.starts_with("3.0"));
        schemas.setSource(source);
        const std::size_t before = types.candidates.size();
        if (version.empty())
            messages.readAsyncApi(root);
        else
            messages.readOpenApi(root);
        // Without messages, the schemas are the candidates for the main type.
        const bool hasMessages = types.candidates.size() > before;
        schemas.declareMembers(tree.find(tree.find(root, JsonWord::components), JsonWord::schemas),
                               !hasMessages || !queryRoot().empty());
    }
    if (!queryRoot().empty())
        avro.addNamedTypes();
    schemas.finish();
    avro.finish();
}
