#pragma once

#include "Base/Text.h"

/// The bytes of a file as UTF-8: by their byte order mark, else by the encoding that their XML or text declaration
/// names, else as UTF-8 where they are valid, else as Windows-1252. The answer is a view of `bytes` where that changes
/// nothing, else of `room`, which then holds the text. NUL reads as a space, other control characters as U+FFFD.
std::string_view decodeText(std::string_view bytes, CString& room);
