#include "Platform/Files/File.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr std::size_t kBufferSize = 1 << 16;

// A descriptor that closes itself.
class Descriptor
{
public:
    explicit Descriptor(int opened) : fd(opened) {}
    ~Descriptor()
    {
        if (fd >= 0)
            ::close(fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd; }

private:
    int fd;
};

// Opens for reading; a folder opens too, and is refused here. The file's state goes into `state`.
int openForReading(const CString& fileName, struct stat& state)
{
    const int fd = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    if (::fstat(fd, &state) == 0 && !S_ISDIR(state.st_mode))
        return fd;
    const int error = S_ISDIR(state.st_mode) ? EISDIR : errno;
    ::close(fd);
    errno = error;
    return -1;
}

// The permissions that a new file would get here.
mode_t newFileMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// Where a name leads when it is a link, also when nothing is there yet. A link in a circle comes back as it is.
CString behindLinks(const CString& fileName)
{
    std::error_code ignored;
    std::filesystem::path target = fileName;
    for (int links = 0; links < 40 && std::filesystem::is_symlink(target, ignored); ++links)
        target = target.parent_path() / std::filesystem::read_symlink(target, ignored);
    return target;
}

bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

FileCause readFile(const CString& fileName, CString& out)
{
    out.clear();
    struct stat state = {};
    const Descriptor file(openForReading(fileName, state));
    if (file.get() < 0)
        return fileCauseOf(errno);
    // One byte more than the size says, so that the end is seen without growing; a pipe or a /proc file says 0.
    std::size_t used = 0;
    std::size_t room = state.st_size > 0 ? static_cast<std::size_t>(state.st_size) + 1 : kBufferSize;
    for (;;) {
        out.resize(room);
        const ssize_t count = ::read(file.get(), out.data() + used, room - used);
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
        if (used == room)
            room *= 2;
    }
    out.resize(used);
    return FileCause::none;
}

FileCause testReadable(const CString& fileName)
{
    struct stat state = {};
    const Descriptor file(openForReading(fileName, state));
    return file.get() < 0 ? fileCauseOf(errno) : FileCause::none;
}

AtomicFile::AtomicFile(const CString& fileName)
{
    open(fileName);
}

AtomicFile::~AtomicFile()
{
    if (descriptor >= 0)
        ::close(descriptor);
    if (!temporary.empty())
        ::unlink(temporary.c_str());
}

void AtomicFile::open(const CString& fileName)
{
    target = behindLinks(fileName);
    struct stat state = {};
    const bool exists = ::stat(target.c_str(), &state) == 0;
    if (!exists && errno != ENOENT) {
        fail();
        return;
    }
    if (exists && !S_ISREG(state.st_mode)) {
        descriptor = ::open(target.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor < 0)
            fail();
        return;
    }
    // A file that may not be written isn't replaced either, though its folder would allow it.
    if (target.empty() || (exists && ::access(target.c_str(), W_OK) != 0)) {
        errno = target.empty() ? ENOENT : errno;
        fail();
        return;
    }
    CString pattern = target.substr(0, target.rfind('/') + 1) + ".typeforge-XXXXXX";
    descriptor = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (descriptor < 0) {
        fail();
        return;
    }
    temporary = pattern;
    if (::fchmod(descriptor, exists ? state.st_mode & 07777 : newFileMode()) != 0)
        fail();
}

void AtomicFile::fail()
{
    if (cause == FileCause::none)
        cause = fileCauseOf(errno);
}

void AtomicFile::flush()
{
    if (cause == FileCause::none && !writeAll(descriptor, buffer))
        fail();
    buffer.clear();
}

void AtomicFile::write(std::string_view bytes)
{
    if (cause != FileCause::none)
        return;
    if (buffer.size() + bytes.size() > kBufferSize)
        flush();
    if (bytes.size() < kBufferSize) {
        buffer.append(bytes);
    } else if (!writeAll(descriptor, bytes)) {
        fail();
    }
}

FileCause AtomicFile::commit()
{
    flush();
    if (cause == FileCause::none && !temporary.empty() && ::fsync(descriptor) != 0)
        fail();
    if (descriptor >= 0 && ::close(descriptor) != 0)
        fail();
    descriptor = -1;
    if (cause == FileCause::none && !temporary.empty()) {
        if (::rename(temporary.c_str(), target.c_str()) != 0)
            fail();
        else
            temporary.clear();
    }
    return cause;
}
