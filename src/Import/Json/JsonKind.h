#pragma once

#include <string_view>

/// Returns the id of the importer for a document in JSON or YAML, by the keys at its top: "openapi", "avro",
/// "jsonschema", or "json" for any other JSON; empty if it is neither. `start` is the document's beginning.
std::string_view importerOfJson(std::string_view start);
