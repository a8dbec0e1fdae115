#pragma once

#include "Import/Schema/Full/SchemaFullMsg.h"

/// The importer of the messages of a WSDL, 1.1 or 2.0. Schemas may stand among its further files, for what the WSDL
/// imports without saying where it is.
class WsdlMessage : public SchemaFullMessage
{
public:
    WsdlMessage() : SchemaFullMessage(m_descr) {}

    static MsgBase* New() { return new WsdlMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void check(const SchemaSet& set, const CString& fileName) const override;
};
