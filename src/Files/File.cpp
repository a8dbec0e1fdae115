#include "Files/File.h"

#include "Base/Progress.h"
#include "Files/KeptPipe.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

constexpr std::size_t kFirstPiece = 1 << 16;   // bytes, of a file whose size is unknown
constexpr std::size_t kLargestPiece = 8 << 20; // for one read(), so that cancelling takes effect soon

// Returns the errno value why an opened file must not be read, 0 if it may.
int refusal(int descriptor, const struct stat& state)
{
    if (S_ISDIR(state.st_mode))
        return EISDIR;
    // Device 1:3 is /dev/null on Linux.
    const bool isNull = S_ISCHR(state.st_mode) && state.st_rdev == makedev(1, 3);
    // A terminal is allowed, because a user may type a source.
    const bool isDevice = S_ISCHR(state.st_mode) || S_ISBLK(state.st_mode);
    return isDevice && !isNull && ::isatty(descriptor) == 0 ? ENOTSUP : 0;
}

} // namespace

InputFile::InputFile(const CString& fileName, std::size_t most) :
    descriptor(::open(fileToOpen(fileName).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY))
{
    // fstat() tests the opened file. The name may lead to another one meanwhile.
    struct stat state = {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &state) != 0)
        error = errno;
    else
        error = refusal(descriptor.get(), state);
    if (error != 0)
        return;
    size = static_cast<std::size_t>(state.st_size);
    if (most == kAnySize)
        return;
    if (size > most)
        error = EOVERFLOW;
    left = size > 0 ? size : most + 1; // a file of size 0 may be a pipe or of /proc, and have more
}

ssize_t InputFile::read(char* out, std::size_t room)
{
    // At the limit, a file of known size ends; one without a size, as a pipe, is too long.
    if (left == 0) {
        errno = EOVERFLOW;
        return size > 0 ? 0 : -1;
    }
    ssize_t count;
    do {
        count = ::read(descriptor.get(), out, std::min(room, left));
    } while (count < 0 && errno == EINTR);
    if (count > 0 && left != kAnySize)
        left -= static_cast<std::size_t>(count);
    return count;
}

FileCause readFile(const CString& fileName, CString& out, std::size_t most)
{
    out.clear();
    InputFile file(fileName, most);
    if (file.queryError() != 0)
        return fileCauseOf(file.queryError());
    std::size_t used = 0;
    std::size_t room = file.querySize() > 0 ? file.querySize() + 1 : kFirstPiece; // the extra byte detects the end
    for (;;) {
        out.resize(room);
        const ssize_t count = file.read(out.data() + used, std::min(room - used, kLargestPiece));
        if (count < 0) {
            const FileCause cause = fileCauseOf(errno);
            out = {};
            return cause;
        }
        if (count == 0)
            break;
        used += static_cast<std::size_t>(count);
        // Network files and pipes can be slow.
        throwIfCancelled();
        // Doubled, so that a pipe of any length is read in linear time.
        if (used == room)
            room *= 2;
    }
    out.resize(used);
    return FileCause::none;
}

FileCause testReadable(const CString& fileName)
{
    struct stat state = {};
    if (::stat(fileToOpen(fileName).c_str(), &state) != 0)
        return fileCauseOf(errno);
    // Opening one of these could block.
    if (S_ISFIFO(state.st_mode) || S_ISCHR(state.st_mode) || S_ISBLK(state.st_mode) || S_ISSOCK(state.st_mode))
        return fileCauseOf(ENOTSUP);
    return fileCauseOf(InputFile(fileName).queryError());
}
