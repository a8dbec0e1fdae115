#pragma once

#include "Import/SourceReport.h"
#include "Xml/XMLDoc.h"

/// A document that a schema names.
struct NamedDocument
{
    std::uint32_t file;        ///< its number in the report
    SourcePlace namedAt;       ///< where it is named
    std::string_view location; ///< as it is written there
};

/// Tells of a document that `xml` could not read. One that isn't well-formed goes into the report, at its own place;
/// one that is there and can't be read at all ends the import, by SourceRefusal.
void reportUnread(const NamedDocument& document, const XmlDocument& xml, SourceReport& report);
