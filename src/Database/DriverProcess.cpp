#include "Database/DriverProcess.h"

#include "Base/Progress.h"
#include "Base/Secret.h"
#include "Database/DBException.h"
#include "Database/DriverHost.h"
#include "Database/DriverMessage.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <glob.h>
#include <poll.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

using std::chrono::milliseconds;

// The program's side is DriverProcess: it forks, sends a request, waits for the answer, and ends the process. The other
// side is hostDriver(), in which one thread serves requests and another waits for the end of the program. Neither
// relies on the other: the program kills a silent process, and a process ends when its socket is closed.
namespace {

// An answer ends the wait at once; the interval is the delay of a cancellation or timeout.
constexpr milliseconds kPollInterval(50);
constexpr milliseconds kGrace(500);       // for a call to complete after it was cancelled
constexpr milliseconds kDisconnect(2000); // for a driver to disconnect

// Set before the first connection, so it needs no lock.
bool areThreadsUsed = false;

[[noreturn]] void raise(const char* what, int error)
{
    throw CDBException("S1000", 0, CString(what) + ": " + std::strerror(error));
}

// Blocks all signals in its scope. A forked process never leaves the scope, so they stay blocked there.
class SignalBlock
{
public:
    SignalBlock()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

private:
    sigset_t before;
};

// Resets the handlers of signals and of std::terminate(). The program's own would remove its files or report a fault in
// its name; here a fault just ends the process.
void forgetHandlers()
{
    std::set_terminate(std::abort);
    // SIGKILL and SIGSTOP have no handlers; for them the call fails without effect.
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
}

// Closes all descriptors but the socket, so that the driver has none of the program's files, windows and connections.
// Standard error stays open for the sanitizers. Standard input and output go to /dev/null instead, or the driver's next
// file would get their numbers.
void closeAllBut(int socket)
{
    if (const int nothing = ::open("/dev/null", O_RDWR); nothing >= 0) {
        ::dup2(nothing, STDIN_FILENO);
        ::dup2(nothing, STDOUT_FILENO);
    }
    const auto kept = static_cast<unsigned>(socket);
    ::close_range(STDERR_FILENO + 1, kept - 1, 0);
    ::close_range(kept + 1, ~0U, 0);
}

// Removes the log that PostgreSQL's driver writes to /tmp for a process of this program. Debian's packages turn it on
// for every program (CommLog=1 in odbcinst.ini), and a connection's settings can't turn it off. Does nothing if there
// is none.
void removeDriverLog(pid_t process) noexcept
{
    const passwd* const user = ::getpwuid(::geteuid());
    if (!user)
        return;
    // The driver (mylog.c in psqlodbc) puts the program's name and "_" at the *. It may read past the end of that name,
    // so the file may have another name, or none.
    const std::string log = std::string("/tmp/psqlodbc_*") + user->pw_name + std::to_string(process) + ".log";
    glob_t found = {};
    if (::glob(log.c_str(), GLOB_NOSORT | GLOB_NOESCAPE, nullptr, &found) == 0)
        for (std::size_t i = 0; i < found.gl_pathc; ++i)
            ::unlink(found.gl_pathv[i]);
    ::globfree(&found);
}

// The program may have been killed, so that the process removes the log itself.
[[noreturn]] void exitProcess()
{
    removeDriverLog(::getpid());
    ::_exit(EXIT_SUCCESS);
}

// Ends the process when the program has closed its side of the socket. The driver's thread gets time to disconnect,
// which may create the log, and to exit; it may never return from a call.
void exitWithProgram(int socket)
{
    // No event is asked for: poll(2) reports a hang-up and errors in any case, and the other thread reads the requests.
    pollfd end = {socket, 0, 0};
    while (::poll(&end, 1, -1) < 0) {
    }
    std::this_thread::sleep_for(kDisconnect);
    exitProcess();
}

// Serves the driver in the forked process. Never returns to the program's code, of which the process has a copy.
[[noreturn]] void hostDriver(int handed) noexcept
{
    forgetHandlers();
    const int socket = ::fcntl(handed, F_DUPFD, STDERR_FILENO + 2); // a gap, as close_range() rejects empty ranges
    closeAllBut(socket);
    keepOutOfCores(); // the process gets the password
    std::thread(exitWithProgram, socket).detach();
    serveDriver(socket);
    exitProcess();
}

} // namespace

void DriverProcess::useThreads()
{
    areThreadsUsed = true;
}

DriverProcess::DriverProcess(CString source) : source(std::move(source))
{
    // Closed on exec, so that a program that is started meanwhile doesn't keep the socket open.
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        raise("Can't create a pipe to the driver's process", errno);
    socket = ends[0];
    if (areThreadsUsed) {
        std::thread([other = ends[1]] {
            serveDriver(other);
            ::close(other);
        }).detach();
        return;
    }
    const SignalBlock block; // the program's handlers must not run in the new process
    process = ::fork();
    const int error = errno;
    if (process == 0)
        hostDriver(ends[1]);
    ::close(ends[1]);
    if (process > 0)
        return;
    ::close(socket);
    raise("Can't start a process for the driver", error);
}

DriverProcess::~DriverProcess()
{
    if (!isCalling)
        disconnect();
    end();
}

CString DriverProcess::call(std::string_view request, milliseconds timeout)
{
    const auto start = Clock::now();
    const SocketWait waiting = [&](short events) { waitFor(events, start, timeout); };
    CString answer;
    isCalling = true; // stays true if the call throws
    if (!sendMessage(socket, request, waiting) || !receiveMessage(socket, answer, waiting))
        raiseExit();
    isCalling = false;
    return answer;
}

// Waits for the socket, the time limit or a cancellation. A cancelled call gets kGrace to complete, so that its effect
// is known. Later calls share that time, or a series of them would never end.
void DriverProcess::waitFor(short events, Clock::time_point start, milliseconds timeout)
{
    pollfd ready = {socket, events, 0};
    while (::poll(&ready, 1, static_cast<int>(std::min(kPollInterval, timeout).count())) <= 0) {
        const auto now = Clock::now();
        unwantedSince = isStillWanted() ? Clock::time_point::max() : std::min(unwantedSince, now);
        if (now - start >= timeout)
            throw CDBException("S1T00", 0,
                               "The database has not answered for " + std::to_string(timeout.count() / 1000) +
                                   " seconds; the connection is closed");
        if (unwantedSince != Clock::time_point::max() && now - unwantedSince >= kGrace)
            throw Cancelled();
    }
}

void DriverProcess::raiseExit()
{
    const int status = end();
    const char* const cause = WIFSIGNALED(status) ? sigdescr_np(WTERMSIG(status)) : nullptr;
    throw CDBException("08S01", 0,
                       "The driver of the " + (source.empty() ? "database" : "data source " + source) +
                           (cause ? CString(" has crashed (") + cause + ")" : " has ended") +
                           "; the connection is closed");
}

// Ends the requests and waits until the process has disconnected, which closes its side of the socket, at most
// kDisconnect.
void DriverProcess::disconnect() const
{
    // The process then finds the end of the requests, returns from serveDriver() and frees the connection.
    ::shutdown(socket, SHUT_WR);
    pollfd closed = {socket, POLLIN, 0};
    while (::poll(&closed, 1, static_cast<int>(kDisconnect.count())) < 0 && errno == EINTR) {
    }
}

// Ends the process, by SIGKILL if it still runs, and returns its status as waitpid(2) reports it; 0 if unknown. Waits
// without a limit only after SIGKILL, which no process survives.
int DriverProcess::end()
{
    ::close(std::exchange(socket, -1));
    const pid_t ended = std::exchange(process, -1);
    int status = 0;
    if (ended <= 0)
        return status;
    if (::waitpid(ended, &status, WNOHANG) == 0) {
        ::kill(ended, SIGKILL);
        while (::waitpid(ended, &status, 0) < 0 && errno == EINTR) {
        }
    }
    removeDriverLog(ended);
    return status;
}
