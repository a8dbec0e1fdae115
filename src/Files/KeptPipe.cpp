#include "Files/KeptPipe.h"

#include "Files/Descriptor.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <list>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

// The names and copies. A list, because a Descriptor can't be moved. There are a few at most, so they are searched one
// by one.
std::list<std::pair<CString, Descriptor>> keptPipes;

// Returns the descriptor of a new file without a name, -1 with errno. Nothing is left of it, however the process ends.
// Descriptors below 3 are avoided, because they would be taken for the standard streams.
int makeFile()
{
    std::FILE* const file = std::tmpfile();
    if (!file)
        return -1;
    const int made = ::fcntl(::fileno(file), F_DUPFD_CLOEXEC, 3);
    std::fclose(file);
    return made;
}

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
    const Descriptor copy(makeFile());
    // Duplicated, because `copy` closes its own descriptor.
    return copy.isOpen() && copyAll(descriptor, copy) ? ::fcntl(copy.get(), F_DUPFD_CLOEXEC, 3) : -1;
}

bool keepText(const CString& fileName, std::string_view text)
{
    const int file = makeFile();
    if (file < 0)
        return false;
    return keptPipes.emplace_back(fileName, file).second.write(text);
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
    keptPipes.emplace_back(fileName, copy);
    return true;
}

CString fileToOpen(const CString& fileName)
{
    for (const auto& [name, copy] : keptPipes)
        if (name == fileName)
            // Opened anew, so that each reader has a position of its own and begins at the start.
            return "/proc/self/fd/" + std::to_string(copy.get());
    return fileName;
}
