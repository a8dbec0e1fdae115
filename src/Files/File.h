#pragma once

#include "Base/Text.h"
#include "Files/Descriptor.h"
#include "Files/FileMessage.h"

#include <cstddef>
#include <limits>
#include <sys/types.h>

/// No limit on the size of a file.
inline constexpr std::size_t kAnySize = std::numeric_limits<std::size_t>::max();

/// A file or pipe that is open for reading. Fails for a folder (EISDIR) and for a device other than a terminal or the
/// null device, because it might never end (ENOTSUP). Fails for a file longer than `most` bytes (EOVERFLOW). With a
/// limit, bytes that are appended during the read are not read. Opening a pipe waits for a writer.
///
/// A kept pipe or text is read instead of the file if there is one (Files/KeptPipe).
class InputFile
{
public:
    /// Opens a file; queryError() tells whether that failed.
    explicit InputFile(const CString& fileName, std::size_t most = kAnySize);

    /// Returns the errno value of the failure to open, 0 if the file is open.
    int queryError() const { return error; }

    /// Returns the size in bytes that the system reports; 0 for a pipe.
    std::size_t querySize() const { return size; }

    /// Reads as read(2) does: returns the number of bytes, 0 at the end, -1 with errno. A pipe with more bytes than the
    /// limit fails with EOVERFLOW.
    ssize_t read(char* out, std::size_t room);

private:
    Descriptor descriptor;
    int error = 0;
    std::size_t size = 0;
    std::size_t left = kAnySize; // bytes left of the limit
};

/// Reads a whole file or pipe of at most `most` bytes into `out`. Returns `none`, or the cause of a failure with `out`
/// empty. Throws Cancelled if the progress handler refuses. A file that grows during the read is read to its new end
/// unless `most` is given.
FileCause readFile(const CString& fileName, CString& out, std::size_t most = kAnySize);

/// Returns `none` if the file can be opened for reading, else the cause. Returns at once: a pipe or device is not
/// opened, since opening it could block, and counts as `generic`.
FileCause testReadable(const CString& fileName);
