#include "Import/Dtd/DTDFullMsg.h"

#include "Import/Dtd/DTDMsg.h"
#include "Import/Dtd/DTDReader.h"

DTDFullMessage::DTDFullMessage() : FullMessage(DTDMessage::m_descr) {}

void DTDFullMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    DTDEntities entities(types, report);
    DTDTokens tokens(entities, entities.addMain(fileName, source), report);
    DTDReader(tokens, types, report).read();
}
