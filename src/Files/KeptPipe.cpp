#include "Files/KeptPipe.h"

#include "Files/Descriptor.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <list>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct KeptPipe
{
    CString name;
    Descriptor copy;

    KeptPipe(const CString& name, int copy) : name(name), copy(copy) {}
};

std::list<KeptPipe> g_pipes;

bool copyAll(int from, const Descriptor& to)
{
    char piece[1 << 16];
    for (;;) {
        const ssize_t size = ::read(from, piece, sizeof piece);
        if (size == 0)
            return true;
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0 || !to.write({piece, static_cast<std::size_t>(size)}))
            return false;
    }
}

} // namespace

int copyToFile(int descriptor)
{
    std::FILE* const file = std::tmpfile();
    if (!file)
        return -1;
    const Descriptor copy(::dup(::fileno(file)));
    std::fclose(file);
    return copy.isOpen() && copyAll(descriptor, copy) ? ::fcntl(copy.get(), F_DUPFD_CLOEXEC, 3) : -1;
}

bool isPipe(const CString& fileName)
{
    struct stat state = {};
    return ::stat(fileName.c_str(), &state) == 0 && S_ISFIFO(state.st_mode);
}

bool keepPipe(const CString& fileName)
{
    const Descriptor pipe(::open(fileName.c_str(), O_RDONLY | O_CLOEXEC));
    const int copy = pipe.isOpen() ? copyToFile(pipe.get()) : -1;
    if (copy < 0)
        return false;
    g_pipes.emplace_back(fileName, copy);
    return true;
}

CString openedFile(const CString& fileName)
{
    for (const KeptPipe& pipe : g_pipes)
        if (pipe.name == fileName)
            return "/proc/self/fd/" + std::to_string(pipe.copy.get());
    return fileName;
}
