#pragma once

#include "Base/Text.h"

/// Copies everything from a descriptor, up to its end, into a file without a name. Returns a descriptor of the copy, or
/// -1 with errno. The caller owns it. Its offset is at the end; opening it again through /proc/self/fd reads from the
/// start.
int copyToFile(int descriptor);

/// Returns whether a name leads to a pipe, which can be read only once.
bool isPipe(const CString& fileName);

/// Reads a pipe to its end and keeps the bytes until the program ends. From then on, each InputFile of that name reads
/// them. Returns false with errno on failure. For imports that read a source twice, because opening a pipe a second
/// time would wait for another writer for ever. Waits until all writers have closed the pipe. Call this function and
/// keepText() only while no other thread opens files.
bool keepPipe(const CString& fileName);

/// Makes each InputFile of that name read `text` from now on. Returns false with errno on failure. `fileName` need not
/// exist.
bool keepText(const CString& fileName, std::string_view text);

/// Returns the file to open for a name: its kept copy if there is one, else the name itself.
CString fileToOpen(const CString& fileName);
