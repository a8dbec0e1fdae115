#include "Formats/SchemaFullMsg.h"

#include "Formats/SchemaMsg.h"

SchemaFullMessage::SchemaFullMessage() : FullMessage(SchemaMessage::m_descr) {}

void SchemaFullMessage::read(const CString&, const CString&, SourceTypes&, SourceReport&) {}
