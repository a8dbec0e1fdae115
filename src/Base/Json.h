#pragma once

#include "Base/Text.h"

/// A text as JSON writes it (RFC 8259), quotes included, made fit as for a document (toXmlText).
CString jsonText(std::string_view text);

/// Appends the same to `out`.
void appendJson(CString& out, std::string_view text);
