#include "Formats/SchemaFullMsg.h"

#include "Formats/SchemaMsg.h"
#include "Formats/SchemaTypes.h"

SchemaFullMessage::SchemaFullMessage() : FullMessage(SchemaMessage::m_descr) {}

void SchemaFullMessage::read(const CString& source, const CString&, SourceTypes& types, SourceReport& report)
{
    SchemaSet set(types, report);
    if (const CString error = set.load(source); !error.empty())
        throw SourceRefusal{error};
    SchemaTypes(set, types).read();
    set.reportNotes();
}
