#include "Import/Schema/Full/WsdlMsg.h"

#include "Import/Schema/Full/SchemaSet.h"

void WsdlMessage::check(const SchemaSet& set, const CString& fileName) const
{
    if (!set.holdsWsdl())
        throw SourceRefusal{fileName + " is not a WSDL.", {"", "it is not a WSDL"}};
}
