#include "Formats/SchemaFullMsg.h"

#include "Formats/SchemaMsg.h"
#include "Formats/SchemaTypes.h"

SchemaFullMessage::SchemaFullMessage() : FullMessage(SchemaMessage::m_descr) {}

void SchemaFullMessage::read(const CString& source, const CString&, SourceTypes& types, SourceReport& report)
{
    SchemaSet set(types, report);
    set.load(source);
    SchemaTypes(set, types).read(queryRoot());
    set.reportNotes();
}
