#pragma once

#include "Base/Text.h"

#include <optional>

/// The full name of the type that a BROKERTYPEDESCRIPTION document describes. Nothing for what a repository refuses: a
/// document that isn't well-formed, has another root or no NAME, or more than one content element.
std::optional<CString> queryTypeName(std::string_view document);
