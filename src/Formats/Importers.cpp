#include "Formats/BrokerMsg.h"
#include "Formats/DTDMsg.h"
#include "Formats/MsgBase.h"
#include "Formats/ODBCMsg.h"
#include "Formats/SchemaMsg.h"
#include "Formats/XMLDataMsg.h"

// Addresses only, so it doesn't matter which unit's descriptor is constructed first.
MsgUIDescriptor* g_amud[] = {&DTDMessage::m_descr,    &XMLDataMessage::m_descr, &SchemaMessage::m_descr,
                             &BrokerMessage::m_descr, &ODBCMessage::m_descr,    nullptr};
