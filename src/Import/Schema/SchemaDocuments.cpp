#include "Import/Schema/SchemaDocuments.h"

#include "Files/FileMessage.h"

// A file that exists but can't be read, for example because of its permissions, is part of the schema, so the types
// would be wrong without it.
void reportUnread(const NamedDocument& document, const XmlDocument& xml, SourceReport& report)
{
    const SourceFault& fault = xml.queryFault();
    if (xml.querySystemError() != 0)
        throw SourceRefusal{cantOpen(report.fileNameOf(document.file), fileCauseOf(xml.querySystemError())),
                            report.faultAt(document.namedAt, CString(document.location) + ": " + fault.reason)};
    report.addIllFormed(document.file, fault, document.namedAt);
}
