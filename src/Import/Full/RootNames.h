#pragma once

#include "Import/Full/SourceTypes.h"

/// The name of an element or type without its namespace, of "name", "prefix:name" or "{URI}name".
std::string_view localNameOf(std::string_view root);

/// The candidate that `root` names: "name", "{URI}name", or "prefix:name" with a prefix that the source declares. An
/// element goes before a type, one of the sources' own before one of a document that they name. Throws SourceRefusal
/// where there is none, and with their full names where there are several.
SourceTypes::Index candidateCalled(std::string_view root, const SourceTypes& types);
