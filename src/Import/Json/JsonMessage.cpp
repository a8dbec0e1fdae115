#include "Import/Json/JsonMessage.h"

#include "Import/Full/RootNames.h"
#include "Import/Json/JsonTypes.h"
#include "Import/Schema/Full/MessageSchemas.h"

#include <algorithm>

// Makes types once if no main types are requested, else twice: first all of them, with the report paused, to find the
// requested types by name; then these alone, into types that are dropped, to report their losses. Documents are parsed
// once, and faults of a document itself are reported then.
void JsonMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    const bool areRequested = !queryRoots().empty();
    JsonDocuments documents(types, report, withComments);
    std::vector<JsonNode::Index> roots{documents.load(source)};
    for (const CString& file : furtherFiles)
        roots.push_back(documents.load(file));
    MessageSchemas xml(types, report, *catalogs);
    report.pause(areRequested);
    const auto readAll = [&](JsonTypes& schemas, SourceTypes& into) {
        JsonSources sources{roots, documents, schemas, xml, into, report, areRequested};
        readDocuments(sources);
        if (!areRequested)
            return;
        // The requested types may be those of the documents that the sources refer to.
        schemas.setSource(SourceTypes::kNone);
        for (const auto other : documents.findOthers(roots))
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
        wanted.insert(types.candidates[candidate].place);
        xml.want(candidate);
    }
    SourceTypes alone(fileName);
    JsonTypes requested(documents, alone, report, &wanted);
    readAll(requested, alone);
    xml.readAlone(alone);
}

void readJsonSchemas(JsonSources& sources)
{
    JsonTypes& schemas = sources.schemas;
    const JsonTree& tree = sources.documents.tree;
    std::vector<JsonNode::Index> empty; // declare nothing
    for (JsonNode::Index source = 0; source < sources.roots.size(); ++source) {
        schemas.setSource(source);
        const JsonNode::Index root = sources.roots[source];
        if (root == 0) // the same file again
            continue;
        // Without a type of its own, the definitions become the candidates instead.
        const bool hasOwn = schemas.hasOwnType(root);
        if (hasOwn)
            schemas.addCandidate(root, {});
        for (const JsonWord holder : {JsonWord::defs, JsonWord::definitions})
            schemas.declareMembers(tree.find(root, holder), !hasOwn || sources.areRequested);
        if (!hasOwn && !tree.hasAny(root, {JsonWord::defs, JsonWord::definitions}))
            empty.push_back(source);
    }
    schemas.finish();
    // A single one is refused. In a set, such a document may be a message, or belong to another importer.
    const std::vector<std::size_t> tops = sources.documents.findTops(sources.roots);
    for (const JsonNode::Index source : empty)
        if (sources.roots.size() > 1 && !sources.areRequested && std::ranges::binary_search(tops, source))
            sources.documents.note(SourceReport::invalidValue, sources.roots[source], "no schema");
}
