#pragma once

#include "Base/Text.h"

#include <optional>

/// Returns the full name of the type that a BROKERTYPEDESCRIPTION document describes. Returns nothing for a document
/// that a repository refuses: one that isn't well-formed, has another root or no NAME, or more than one content
/// element. The document is parsed once as a stream, whatever its size. Throws std::bad_alloc.
std::optional<CString> queryTypeName(std::string_view document);
