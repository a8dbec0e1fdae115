#include "Formats/DTDMsg.h"
#include "Formats/MsgBase.h"

// Addresses only, so it doesn't matter which unit's descriptor is constructed first.
MsgUIDescriptor* g_amud[] = {&DTDMessage::m_descr, nullptr};
