#pragma once

#include "Import/SourceReport.h"
#include "Xml/XMLDoc.h"

/// A document that a schema refers to.
struct NamedDocument
{
    std::uint32_t file;        ///< its number in the report
    SourcePlace namedAt;       ///< place of the reference
    std::string_view location; ///< the schemaLocation as written
};

/// Reports a document that `xml` could not read. An ill-formed one is reported at the place of its fault, and the
/// import continues without it. Throws SourceRefusal, which ends the import, if the document exists but can't be read.
void reportUnread(const NamedDocument& document, const XmlDocument& xml, SourceReport& report);
