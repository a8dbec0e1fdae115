#include "Import/Schema/Full/SchemaFullMsg.h"

#include "Import/Schema/Full/SchemaTypes.h"

SchemaFullMessage::SchemaFullMessage() : FullMessage(*importerNamed("xsd")) {}

void SchemaFullMessage::read(const CString& source, const CString&, SourceTypes& types, SourceReport& report)
{
    SchemaSet set(types, report);
    set.load(source);
    for (const CString& file : queryFurtherFiles())
        set.load(file);
    SchemaTypes(set, types).read(set.finish(), queryRoots());
    set.reportNotes();
}
