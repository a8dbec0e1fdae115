#pragma once

#include <string_view>

/// The word of the importer for a document in JSON or YAML, by the keys at its top: "openapi", "avro", "jsonschema", or
/// "json" for any other JSON; "" when it is neither. `start` is its beginning.
std::string_view importerOfJson(std::string_view start);
