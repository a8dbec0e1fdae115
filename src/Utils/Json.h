#pragma once

#include "Platform/Text.h"

/// A text as JSON writes it (RFC 8259), quotes included; what is not UTF-8 in it becomes U+FFFD.
CString jsonText(std::string_view text);
