#include "Import/Schema/Full/SchemaFullMsg.h"

#include "Import/Full/RootNames.h"
#include "Import/Schema/Full/SchemaTypes.h"

SchemaFullMessage::SchemaFullMessage() : FullMessage(*importerNamed("xsd")) {}

void SchemaFullMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    SchemaSet set(types, report, queryCatalogs());
    set.load(source);
    for (const CString& file : queryFurtherFiles())
        set.load(file);
    check(set, fileName);
    const auto sources = set.finish();
    const auto messages = set.findMessages();
    const bool isAskedFor = !queryRoots().empty() || !messages.empty();
    if (isAskedFor)
        set.reportNotes(); // of the documents themselves
    SchemaTypes all(set, types);
    all.read(sources, queryRoots(), messages);
    // Only what the requested types reach is imported, so only that is reported. Reading them alone finds it.
    if (isAskedFor && !types.empty()) {
        const RootNames names(types);
        std::vector<SchemaNode::Index> wanted;
        for (const CString& root : queryRoots())
            wanted.push_back(all.componentOf(names.find(root)));
        for (const auto& [element, source] : messages)
            if (queryRoots().empty())
                wanted.push_back(element);
        set.dropNotes();
        SourceTypes alone(fileName);
        SchemaTypes(set, alone).readAlone(wanted);
    }
    set.reportNotes();
}
