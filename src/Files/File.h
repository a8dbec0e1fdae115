#pragma once

#include "Base/Text.h"
#include "Files/Descriptor.h"
#include "Files/FileError.h"

#include <cstddef>
#include <limits>
#include <sys/types.h>

/// The most bytes that a file may have which a source names. What the user names may have any size.
inline constexpr std::size_t kMaxNamedFile = 64 << 20;
inline constexpr std::size_t kAnySize = std::numeric_limits<std::size_t>::max();

/// A file or a pipe that is open for reading. A folder is refused (EISDIR), and a device that might never end
/// (ENOTSUP): all but terminals and the null device. A file that is longer than `most` bytes is refused too
/// (EOVERFLOW); with a bound, what is appended while it is read isn't read.
class InputFile
{
public:
    explicit InputFile(const CString& fileName, std::size_t most = kAnySize);

    /// The errno value that says why nothing is open, else 0.
    int queryError() const { return error; }

    /// How many bytes there are, as far as the system knows: 0 for a pipe.
    std::size_t querySize() const { return size; }

    /// Like read(2): 0 at the end, -1 with errno.
    ssize_t read(char* out, std::size_t room);

private:
    Descriptor descriptor;
    int error = 0;
    std::size_t size = 0;
    std::size_t left = kAnySize; // of the bound
};

/// Reads a whole file or pipe of at most `most` bytes into `out`, which is empty on failure. Raises Cancelled when
/// nobody wants it any more.
FileCause readFile(const CString& fileName, CString& out, std::size_t most = kAnySize);

/// `none` when it is a regular file that can be opened for reading, else why not. Answers at once: a pipe, which would
/// be waited for, isn't opened.
FileCause testReadable(const CString& fileName);
