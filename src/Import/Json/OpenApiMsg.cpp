#include "Import/Json/OpenApiMsg.h"

#include "Import/Json/ApiMessages.h"

#include <algorithm>

namespace {

using Index = JsonNode::Index;

std::string_view openApiVersionOf(const JsonTree& tree, Index root)
{
    return tree.text(tree.find(root, JsonWord::openapi));
}

[[noreturn]] void refuse(const CString& file, const CString& reason)
{
    throw SourceRefusal{file + ": " + reason + ".", {file, reason}};
}

[[noreturn]] void refuseUnknown(const CString& file)
{
    refuse(file, "it is neither an OpenAPI nor an AsyncAPI document");
}

// Returns the descriptions of APIs among the roots, then the other documents, which are parts of descriptions. `count`
// is set to the number of descriptions, which is at least one.
std::vector<Index> descriptionsFirst(std::span<const Index> roots, const JsonTree& tree, const SourceReport& report,
                                     std::size_t& count)
{
    std::vector<Index> all(roots.begin(), roots.end());
    std::erase(all, 0);
    const auto parts = std::stable_partition(all.begin(), all.end(), [&](Index root) {
        if (tree.find(root, JsonWord::swagger) != 0)
            refuse(report.fileNameOf(tree[root].document), "it is Swagger 2.0; convert it to OpenAPI 3 first");
        return !openApiVersionOf(tree, root).empty() || tree.find(root, JsonWord::asyncapi) != 0;
    });
    count = static_cast<std::size_t>(parts - all.begin());
    if (count == 0)
        refuseUnknown(report.fileNameOf(tree[all.front()].document));
    return all;
}

} // namespace

void OpenApiMessage::readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                                   SourceTypes& types, SourceReport& report)
{
    const JsonTree& tree = documents.tree;
    std::size_t count = 0;
    const std::vector<Index> all = descriptionsFirst(roots, tree, report, count);
    const std::unordered_set<Index> parts(all.begin() + static_cast<std::ptrdiff_t>(count), all.end());
    // A "$ref" replaces its siblings in OpenAPI 3.0, and in AsyncAPI, whose schemas are of draft 7. OpenAPI 3.1 follows
    // JSON Schema 2020-12. Parts go by the first description.
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::string_view version = openApiVersionOf(tree, all[i < count ? i : 0]);
        documents.setIgnoresSiblings(all[i], version.empty() || version.starts_with("3.0"));
    }
    AvroTypes avro(documents, schemas, types, report);
    ApiMessages messages(documents, schemas, avro);
    for (Index source = 0; source < roots.size(); ++source) {
        Index& root = roots[source];
        if (parts.contains(root))
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
        if (top >= count)
            refuseUnknown(report.fileNameOf(tree[all[top]].document));
}
