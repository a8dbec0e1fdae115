#include "Formats/DTDFullMsg.h"

#include "Formats/DTDMsg.h"

DTDFullMessage::DTDFullMessage() : FullMessage(DTDMessage::m_descr) {}

void DTDFullMessage::read(const CString&, const CString&, SourceTypes&, SourceReport&) {}
