#include "Import/Json/JsonMessage.h"

#include <algorithm>

void JsonMessage::read(const CString& source, const CString&, SourceTypes& types, SourceReport& report)
{
    JsonDocuments documents(types, report);
    std::vector<Index> roots{documents.load(source)};
    for (const CString& file : queryFurtherFiles())
        roots.push_back(documents.load(file));
    JsonTypes schemas(documents, types, report);
    readDocuments(roots, documents, schemas, types, report);
    // A document that others of the set refer to has no main type of its own.
    const std::vector<std::size_t> tops = documents.findTops(roots);
    for (SourceTypes::Candidate& candidate : types.candidates)
        if (!std::ranges::binary_search(tops, candidate.source))
            candidate.source = SourceTypes::kNone;
}
