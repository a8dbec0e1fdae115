#include "Import/Json/JsonMessage.h"

#include "Import/Full/RootNames.h"
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

[[noreturn]] void refuse(const JsonTree& tree, Index root, const CString& reason, const SourceReport& report)
{
    const CString& file = report.fileNameOf(tree[root].document);
    throw SourceRefusal{file + ": " + reason + ".", {file, reason}};
}

} // namespace

void JsonMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    const bool areRequested = !queryRoots().empty();
    JsonDocuments documents(types, report, allowsComments());
    std::vector<Index> roots{documents.load(source)};
    for (const CString& file : furtherFiles)
        roots.push_back(documents.load(file));
    MessageSchemas xml(types, report, *catalogs);
    report.pause(areRequested);
    const auto readAll = [&](JsonTypes& schemas, SourceTypes& into) {
        readDocuments(roots, documents, schemas, xml, into, report);
        if (!areRequested)
            return;
        // The requested types may be those of the documents that the sources refer to.
        schemas.setSource(SourceTypes::kNone);
        for (const Index other : documents.findOthers(roots))
            for (const CString& root : queryRoots())
                schemas.addDeclared(other, localNameOf(root));
        schemas.finish();
    };
    JsonTypes schemas(documents, types, report);
    readAll(schemas, types);
    report.pause(false);
    xml.read(types, queryRoots());
    // A document that others of the set refer to has no main type of its own.
    const std::vector<std::size_t> tops = documents.findTops(roots);
    for (SourceTypes::Candidate& candidate : types.candidates)
        if (!std::ranges::binary_search(tops, candidate.source))
            candidate.source = SourceTypes::kNone;
    if (!areRequested || types.empty())
        return;
    // The file distinguishes types of the same name. Plain types of the sources are all alike.
    for (SourceTypes::Candidate& candidate : types.candidates) {
        const bool isRecord = candidate.type.kind == SourceTypes::kindRecord && !candidate.isType;
        const SourcePlace place = isRecord ? types.records[candidate.type.index].place : candidate.place;
        if (candidate.uri.empty() && (isRecord || candidate.isType || candidate.source == SourceTypes::kNone))
            candidate.uri = report.fileNameOf(place.file);
    }
    // Only what the requested types reach is imported, so only its losses count. Reading that alone finds them.
    JsonTypes::Places wanted;
    const RootNames names(types);
    for (const CString& root : queryRoots()) {
        const SourceTypes::Index candidate = names.find(root);
        wanted.insert(JsonTypes::keyOf(types.candidates[candidate].place));
        xml.want(candidate);
    }
    SourceTypes alone(fileName);
    JsonTypes requested(documents, alone, report, &wanted);
    readAll(requested, alone);
    xml.readAlone(alone);
}

void JsonSchemaMessage::readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                                      MessageSchemas&, SourceTypes&, SourceReport&)
{
    const JsonTree& tree = documents.tree;
    for (Index source = 0; source < roots.size(); ++source) {
        schemas.setSource(source);
        const Index root = roots[source];
        if (root == 0) // the same file again
            continue;
        // Without a type of its own, the definitions become the candidates instead.
        const bool hasOwn = schemas.hasOwnType(root);
        if (hasOwn)
            schemas.addCandidate(root, {});
        for (const JsonWord holder : {JsonWord::defs, JsonWord::definitions})
            schemas.declareMembers(tree.find(root, holder), !hasOwn || !queryRoot().empty());
    }
    schemas.finish();
}

void OpenApiMessage::readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& schemas,
                                   MessageSchemas& xml, SourceTypes& types, SourceReport& report)
{
    const JsonTree& tree = documents.tree;
    const auto refuseUnless = [&](bool isRight, Index root, const char* reason) {
        if (!isRight)
            refuse(tree, root, reason, report);
    };
    constexpr const char* unknown = "it is neither an OpenAPI nor an AsyncAPI document";
    std::vector<Index> all(roots.begin(), roots.end());
    std::erase(all, 0);
    for (const Index root : all)
        refuseUnless(tree.find(root, JsonWord::swagger) == 0, root, "it is Swagger 2.0; convert it to OpenAPI 3 first");
    std::stable_partition(all.begin(), all.end(), [&](Index root) { return isDescription(tree, root); });
    refuseUnless(isDescription(tree, all.front()), all.front(), unknown);
    // A "$ref" replaces its siblings in OpenAPI 3.0, and in AsyncAPI, whose schemas are of draft 7. OpenAPI 3.1 follows
    // JSON Schema 2020-12. For parts, the version of the first description counts.
    for (const Index root : all) {
        const std::string_view version = openApiVersionOf(tree, isDescription(tree, root) ? root : all.front());
        documents.setIgnoresSiblings(root, version.empty() || version.starts_with("3.0"));
    }
    for (const Index root : all)
        schemas.nameReferred(tree.find(tree.find(root, JsonWord::components), JsonWord::schemas));
    AvroTypes avro(documents, schemas, types, report);
    ApiMessages messages(documents, schemas, avro, xml, types);
    for (Index source = 0; source < roots.size(); ++source) {
        Index& root = roots[source];
        if (!isDescription(tree, root))
            root = 0;
        if (root == 0)
            continue;
        schemas.setSource(source);
        const std::size_t before = types.candidates.size() + xml.countMessages();
        if (openApiVersionOf(tree, root).empty())
            messages.readAsyncApi(root);
        else
            messages.readOpenApi(root);
        // Without messages, the schemas are the candidates for the main type.
        const bool hasMessages = types.candidates.size() + xml.countMessages() > before;
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

void AvroMessage::readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& names, MessageSchemas&,
                                SourceTypes& types, SourceReport& report)
{
    AvroTypes avro(documents, names, types, report);
    // All documents are declared before one is read, because they may use each other's types.
    for (const Index root : roots)
        avro.declareAll(root);
    for (Index source = 0; source < roots.size(); ++source) {
        names.setSource(source);
        const Index root = roots[source];
        if (root == 0) // the same file again
            continue;
        if (!avro.isSource(root))
            refuse(documents.tree, root, "it is neither a schema nor a protocol of Avro", report);
        if (documents.tree.find(root, JsonWord::protocol) != 0)
            avro.readProtocol(root);
        else
            avro.addCandidate(root, names.toModelName(toXmlName(documents.nameOf(root)), root));
    }
    // The requested root may be any of the types.
    if (!queryRoot().empty())
        avro.addNamedTypes();
    avro.finish();
}
