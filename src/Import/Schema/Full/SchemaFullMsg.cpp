#include "Import/Schema/Full/SchemaFullMsg.h"

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
    SchemaTypes(set, types).read(sources, queryRoots(), set.findMessages());
    set.reportNotes();
}
