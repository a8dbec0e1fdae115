#pragma once

#include "Import/Json/JsonTypes.h"
#include "Import/Schema/Full/MessageSchemas.h"

/// The documents of one import, and what their types are added to. A reader adds the candidates for main types under
/// the document's position, see JsonTypes::setSource().
struct JsonSources
{
    std::span<JsonNode::Index> roots; ///< of the documents; 0 if the same file was given before, or, set by the reader,
                                      ///< if the document is only a part of others
    JsonDocuments& documents;
    JsonTypes& schemas;
    MessageSchemas& xml; ///< for schemas in XML Schema
    SourceTypes& types;
    SourceReport& report;
    bool areRequested; ///< the main types, which may be any types
};
