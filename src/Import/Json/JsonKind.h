#pragma once

#include <string_view>

/// Returns the id of the importer for a document in JSON or YAML, by its top-level keys: "openapi", "avro",
/// "jsonschema", or "json" for any other JSON; empty for any other text. `start` is the document's beginning, and may
/// end anywhere. Ids are those of the table of importers.
std::string_view importerOfJson(std::string_view start);

/// Returns whether a part of an API description may have a key: a path, operation, body, channel or message of OpenAPI
/// 3 or AsyncAPI 2 and 3.
bool isApiKey(std::string_view key);

/// Returns whether the type of a schema is one of Avro's with a name, which JSON Schema doesn't have.
bool isAvroType(std::string_view type);

/// The languages of the schemas of an API.
enum class SchemaLanguage
{
    jsonSchema,
    avro,
    xmlSchema,
    foreign
};

/// Returns the language of a schema by its format in lower case, a media type; JSON Schema if the format is empty, and
/// `foreign` if it is not recognised.
SchemaLanguage languageOf(std::string_view format);
