#pragma once

#include "Base/Text.h"

/// Copies what a descriptor gives up to its end into a file without a name, which is read from its start. Returns the
/// copy's descriptor, or -1 with errno. The caller owns it.
int copyToFile(int descriptor);

/// Whether a name leads to a pipe, which can be read only once.
bool isPipe(const CString& fileName);

/// Reads a pipe to its end and keeps what came until the program ends: each InputFile of that name reads it from now
/// on. Returns false with errno if that fails.
bool keepPipe(const CString& fileName);

/// Has each InputFile of that name read `text` from now on. Returns false with errno if that fails.
bool keepText(const CString& fileName, std::string_view text);

/// The file to open for a name: that of what was kept, else the name itself.
CString openedFile(const CString& fileName);
