#include "Import/Schema/Full/SchemaFullMsg.h"

#include "Import/Schema/Full/SchemaTypes.h"

SchemaFullMessage::SchemaFullMessage() : FullMessage(*importerNamed("xsd")) {}

void SchemaFullMessage::read(const CString& source, const CString&, SourceTypes& types, SourceReport& report)
{
    SchemaSet set(types, report);
    set.load(source);
    SchemaTypes(set, types).read(queryRoot());
    set.reportNotes();
}
