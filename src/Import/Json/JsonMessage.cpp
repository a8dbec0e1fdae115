#include "Import/Json/JsonMessage.h"

#include "Import/Full/RootNames.h"

#include <algorithm>

void JsonMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    const bool areRequested = !queryRoots().empty();
    JsonDocuments documents(types, report);
    std::vector<Index> roots{documents.load(source)};
    for (const CString& file : queryFurtherFiles())
        roots.push_back(documents.load(file));
    report.pause(areRequested);
    JsonTypes schemas(documents, types, report);
    readDocuments(roots, documents, schemas, types, report);
    // A document that others of the set refer to has no main type of its own.
    const std::vector<std::size_t> tops = documents.findTops(roots);
    for (SourceTypes::Candidate& candidate : types.candidates)
        if (!std::ranges::binary_search(tops, candidate.source))
            candidate.source = SourceTypes::kNone;
    report.pause(false);
    if (!areRequested || types.empty())
        return;
    // Only what the requested types reach is imported, so only its losses count. Reading that alone finds them.
    JsonTypes::Places wanted;
    const RootNames names(types);
    for (const CString& root : queryRoots())
        wanted.insert(JsonTypes::keyOf(types.candidates[names.find(root)].place));
    SourceTypes alone(fileName);
    JsonTypes requested(documents, alone, report, &wanted);
    readDocuments(roots, documents, requested, alone, report);
}
