// Preloaded into a program: reports the calls that sync files to the disk on standard error. DISK_FAILS and DISK_KILLS
// name a call that fails with EIO, or that kills the process. With either of them nothing is reported.
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool failsNow(const std::string& call)
{
    const char* const fails = std::getenv("DISK_FAILS");
    const char* const kills = std::getenv("DISK_KILLS");
    if (kills && kills == call)
        raise(SIGKILL);
    errno = EIO;
    if (!fails && !kills)
        static_cast<void>(!write(STDERR_FILENO, (call + '\n').c_str(), call.size() + 1));
    return fails && fails == call;
}

} // namespace

extern "C" {

int fsync(int file)
{
    return failsNow("fsync") ? -1 : static_cast<int>(syscall(SYS_fsync, file));
}

int rename(const char* from, const char* to)
{
    return failsNow("rename") ? -1 : static_cast<int>(syscall(SYS_rename, from, to));
}

int ftruncate(int file, off_t size)
{
    return failsNow("ftruncate") ? -1 : static_cast<int>(syscall(SYS_ftruncate, file, size));
}

ssize_t sendfile(int to, int from, off_t* at, size_t count)
{
    return failsNow("sendfile") ? -1 : syscall(SYS_sendfile, to, from, at, count);
}
}
