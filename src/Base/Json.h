#pragma once

#include "Base/Text.h"

/// Returns a text as a JSON string (RFC 8259), quotes included, made fit for XML first (toXmlText). Characters outside
/// of ASCII are not escaped. Never throws for invalid UTF-8.
CString jsonText(std::string_view text);

/// Appends the JSON string to `out`.
void appendJson(CString& out, std::string_view text);
