#pragma once

#include "Base/Text.h"

/// Appends a text that is fit for XML, as the value of an attribute between its quotes: & < > " and white space other
/// than blanks are written as references (https://www.w3.org/TR/xml/#AVNormalize would turn such white space into
/// blanks).
void appendXmlValue(CString& out, std::string_view value);

/// Appends a text that is fit for XML, as content: & < > and carriage returns are written as references.
void appendXmlContent(CString& out, std::string_view text);
