#include "Files/File.h"

#include "Base/Progress.h"
#include "Files/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

constexpr std::size_t kFirstPiece = 1 << 16;
constexpr std::size_t kLargestPiece = 8 << 20; // that is waited for at once

// The errno value that says why what was opened is not read from; 0 when it may be.
int refusal(int descriptor)
{
    struct stat state = {};
    if (::fstat(descriptor, &state) != 0)
        return errno;
    if (S_ISDIR(state.st_mode))
        return EISDIR;
    const bool isNull = S_ISCHR(state.st_mode) && state.st_rdev == makedev(1, 3);
    const bool isDevice = S_ISCHR(state.st_mode) || S_ISBLK(state.st_mode);
    return isDevice && !isNull && ::isatty(descriptor) == 0 ? ENOTSUP : 0;
}

// Room for the whole file and one byte more, so that the end is seen without growing; a pipe or a /proc file says 0.
std::size_t firstRoom(int descriptor)
{
    struct stat state = {};
    return ::fstat(descriptor, &state) == 0 && state.st_size > 0 ? static_cast<std::size_t>(state.st_size) + 1
                                                                 : kFirstPiece;
}

} // namespace

int openForReading(const CString& fileName)
{
    const int opened = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    const int error = opened < 0 ? 0 : refusal(opened);
    if (error == 0)
        return opened;
    ::close(opened);
    errno = error;
    return -1;
}

FileCause readFile(const CString& fileName, CString& out)
{
    out.clear();
    const Descriptor file(openForReading(fileName));
    if (!file.isOpen())
        return fileCauseOf(errno);
    std::size_t used = 0;
    std::size_t room = firstRoom(file.get());
    for (;;) {
        out.resize(room);
        const ssize_t count = ::read(file.get(), out.data() + used, std::min(room - used, kLargestPiece));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            const FileCause cause = fileCauseOf(errno);
            out = {};
            return cause;
        }
        if (count == 0)
            break;
        used += static_cast<std::size_t>(count);
        checkWanted();
        if (used == room)
            room *= 2;
    }
    out.resize(used);
    return FileCause::none;
}

FileCause testReadable(const CString& fileName)
{
    struct stat state = {};
    if (::stat(fileName.c_str(), &state) != 0)
        return fileCauseOf(errno);
    if (S_ISFIFO(state.st_mode) || S_ISCHR(state.st_mode) || S_ISBLK(state.st_mode) || S_ISSOCK(state.st_mode))
        return fileCauseOf(ENOTSUP);
    const Descriptor file(openForReading(fileName));
    return file.isOpen() ? FileCause::none : fileCauseOf(errno);
}
