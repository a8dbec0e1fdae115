#pragma once

#include "Import/Full/SourceTypes.h"

#include <optional>

/// Returns the kind of a built-in type of XML Schema by its local name, in any edition from 1999 to 2012; nothing if no
/// edition has such a type.
std::optional<SourceTypes::Kind> builtInKind(std::string_view name);
