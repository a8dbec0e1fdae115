#pragma once

#include "Base/Text.h"

/// Returns the bytes of a file as UTF-8. The encoding comes from the byte order mark or a markup start in UTF-16, else
/// from the XML or text declaration. If there is none, or the bytes are not valid in it, they are read as UTF-8 if they
/// are valid UTF-8, else as Windows-1252. The result is a view of `bytes` if nothing has to change, else of `room`,
/// which then holds the text. NUL becomes a space, any other character that XML can't hold U+FFFD. `wrongEncoding`
/// receives the declared encoding if the bytes are not valid in it or it is unknown, unless they are ASCII or it is
/// UTF-8.
///
/// For DTDs; libxml2 decodes the documents that it parses itself.
std::string_view decodeText(std::string_view bytes, CString& room, CString& wrongEncoding);
