#pragma once

#include "Base/Text.h"
#include "Files/FileError.h"

/// Opens a file or a pipe for reading and answers its descriptor, -1 with errno when it can't be. A folder is refused
/// (EISDIR), and a device that might never end (ENOTSUP): all but terminals and the null device.
int openForReading(const CString& fileName);

/// Reads a whole file or pipe as bytes into `out`. What openForReading() refuses can't be read. On failure `out` is
/// empty. Raises Cancelled when nobody wants it any more.
FileCause readFile(const CString& fileName, CString& out);

/// `none` when it is a regular file that can be opened for reading, else why not. Answers at once: a pipe, which would
/// be waited for, isn't opened.
FileCause testReadable(const CString& fileName);
