#pragma once

#include "Base/Text.h"

/// Appends a text that is fit for XML as an attribute value, without quotes. & < > " and white space other than blanks
/// become references, because https://www.w3.org/TR/xml/#AVNormalize would turn that white space into blanks.
void appendXmlValue(CString& out, std::string_view value);

/// Appends a text that is fit for XML as content. & < > and carriage returns become references.
void appendXmlContent(CString& out, std::string_view text);
