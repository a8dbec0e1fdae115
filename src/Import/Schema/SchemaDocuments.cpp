#include "Import/Schema/SchemaDocuments.h"

#include "Files/FileMessage.h"

// A file that exists but can't be read, for example because of its permissions, is part of the schema, so the types
// would be wrong without it. Both errors name the place of the reference, too, because the user may not know the file.
void reportUnread(const NamedDocument& document, const XmlDocument& xml, SourceReport& report)
{
    const SourceFault& fault = xml.queryFault();
    const auto [from, line, column] = document.namedAt;
    if (xml.querySystemError() != 0)
        throw SourceRefusal{cantOpen(report.fileNameOf(document.file), fileCauseOf(xml.querySystemError())),
                            {report.fileNameOf(from), CString(document.location) + ": " + fault.reason,
                             static_cast<long>(line), static_cast<long>(column)}};
    report.add(SourceReport::moduleIllFormed,
               {document.file, static_cast<std::uint32_t>(fault.line), static_cast<std::uint32_t>(fault.column)},
               fault.reason + " (named in " + placeInWords(report.fileNameOf(from), line, column) + ")");
}
