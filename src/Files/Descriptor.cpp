#include "Files/Descriptor.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

void Descriptor::reset(int opened)
{
    close();
    fd = opened;
}

bool Descriptor::close()
{
    const int open = std::exchange(fd, -1);
    // Never repeated after EINTR: Linux has released the number even then (close(2)), and another thread may have it.
    return open < 0 || ::close(open) == 0;
}

bool Descriptor::write(std::string_view bytes) const
{
    while (!bytes.empty()) {
        // A pipe or terminal may take a part only, and a signal may come before the first byte.
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void turnFileFaultsIntoErrors()
{
    // /dev/null, opened with the wrong mode, takes the lowest free number.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    // The signal would end the process. If it is ignored, write() fails with EFBIG (setrlimit(2)).
    std::signal(SIGXFSZ, SIG_IGN);
}
