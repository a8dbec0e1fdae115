#pragma once

#include "Import/Full/SourceTypes.h"

#include <optional>

/// The kind of a type that XML Schema has built in, by its local name, in any of the editions of 1999 to 2012; nothing
/// when none has such a type.
std::optional<SourceTypes::Kind> builtInKind(std::string_view name);
