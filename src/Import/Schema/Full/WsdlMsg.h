#pragma once

#include "Import/Schema/Full/SchemaFullMsg.h"

/// The importer of the messages of a WSDL, 1.1 or 2.0. The further files may be schemas that the WSDL imports without a
/// location.
class WsdlMessage : public SchemaFullMessage
{
public:
    WsdlMessage() : SchemaFullMessage(m_descr) {}

    static MsgBase* New() { return new WsdlMessage; }

    static MsgUIDescriptor m_descr;

protected:
    void check(const SchemaSet& set, const CString& fileName) const override;
};
