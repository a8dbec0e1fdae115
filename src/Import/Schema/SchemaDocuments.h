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

/// Reports a document that `xml` could not read. An ill-formed one is reported at its own fault, and the import goes on
/// without it. One that exists but can't be read ends the import: throws SourceRefusal.
void reportUnread(const NamedDocument& document, const XmlDocument& xml, SourceReport& report);
