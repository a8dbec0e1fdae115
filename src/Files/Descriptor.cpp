#include "Files/Descriptor.h"

#include <cerrno>
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
    return open < 0 || ::close(open) == 0;
}

bool Descriptor::write(std::string_view bytes) const
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}
