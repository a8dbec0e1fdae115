#include "Import/Json/OpenApiMsg.h"

#include "Import/Json/ApiMessages.h"

#include <algorithm>

namespace {

using Index = JsonNode::Index;

std::string_view openApiVersionOf(const JsonTree& tree, Index root)
{
    return tree.text(tree.find(root, JsonWord::openapi));
}

// Returns whether a document describes an API, instead of being a part of a description.
bool isDescription(const JsonTree& tree, Index root)
{
    return !openApiVersionOf(tree, root).empty() || tree.find(root, JsonWord::asyncapi) != 0;
}

} // namespace

void OpenApiMessage::readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                                   SourceTypes& types, SourceReport& report)
{
    const JsonTree& tree = documents.tree;
    const auto refuseUnless = [&](bool isRight, Index root, const CString& reason) {
        const CString& file = report.fileNameOf(tree[root].document);
        if (!isRight)
            throw SourceRefusal{file + ": " + reason + ".", {file, reason}};
    };
    constexpr const char* unknown = "it is neither an OpenAPI nor an AsyncAPI document";
    std::vector<Index> all(roots.begin(), roots.end());
    std::erase(all, 0);
    for (const Index root : all)
        refuseUnless(tree.find(root, JsonWord::swagger) == 0, root, "it is Swagger 2.0; convert it to OpenAPI 3 first");
    std::stable_partition(all.begin(), all.end(), [&](Index root) { return isDescription(tree, root); });
    refuseUnless(isDescription(tree, all.front()), all.front(), unknown);
    // A "$ref" replaces its siblings in OpenAPI 3.0, and in AsyncAPI, whose schemas are of draft 7. OpenAPI 3.1 follows
    // JSON Schema 2020-12. Parts go by the first description.
    for (const Index root : all) {
        const std::string_view version = openApiVersionOf(tree, isDescription(tree, root) ? root : all.front());
        documents.setIgnoresSiblings(root, version.empty() || version.starts_with("3.0"));
    }
    AvroTypes avro(documents, schemas, types, report);
    ApiMessages messages(documents, schemas, avro);
    for (Index source = 0; source < roots.size(); ++source) {
        Index& root = roots[source];
        if (!isDescription(tree, root))
            root = 0;
        if (root == 0)
            continue;
        schemas.setSource(source);
        const std::size_t before = types.candidates.size();
        if (openApiVersionOf(tree, root).empty())
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
    for (const std::size_t top : documents.findTops(all))
        refuseUnless(isDescription(tree, all[top]), all[top], unknown);
}
