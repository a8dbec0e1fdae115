#pragma once

#include "Import/Full/SourceTypes.h"

#include <optional>

/// Returns the kind of a built-in type of XML Schema by its local name, in any edition from 1999 to 2012; nothing if no
/// edition has such a type. The caller checks the namespace. The model has numbers, times and texts only, so all types
/// but plain numbers and points in time are text.
std::optional<SourceTypes::Kind> builtInKind(std::string_view name);

/// Returns whether a built-in type is a list, by its local name.
bool isBuiltInList(std::string_view name);
