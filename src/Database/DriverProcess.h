#pragma once

#include "Base/Text.h"

#include <chrono>
#include <string_view>
#include <sys/types.h>

/// A process for the driver of one connection. A driver may crash, or wait for a silent server for ever; in its own
/// process it can't end or block the program. One thread may use it at a time.
///
/// The process is a fork without exec, so that it works in any program that links the library, also in a broker's
/// client, which has no main() of ours (docs/adr/driver-process.md). It costs about a millisecond and copies of the
/// pages that the program changes meanwhile.
class DriverProcess
{
public:
    /// Forks the process. `source` is the data source's name for messages, or empty. Throws CDBException if the system
    /// can't create a process. The fork copies the calling thread only. A lock that another thread holds at that
    /// moment, other than those of malloc, stdio and the loader, stays locked there; the call that needs it is then
    /// ended by its timeout.
    explicit DriverProcess(CString source);

    /// Gives the driver two seconds to disconnect, then kills the process. In the middle of a call the process is
    /// killed at once.
    ~DriverProcess();

    DriverProcess(const DriverProcess&) = delete;
    DriverProcess& operator=(const DriverProcess&) = delete;

    /// Sends a request and returns DriverHost's answer. Throws CDBException if none arrives within `timeout` or the
    /// process has ended, and Cancelled if the progress handler refuses. No further call is allowed after an exception.
    /// `timeout` is for the whole call. A cancelled call still returns an answer that arrives within half a second.
    CString call(std::string_view request, std::chrono::milliseconds timeout);

    /// Makes later drivers run in threads of this process, where a fuzzer can measure their coverage.
    static void useThreads();

private:
    using Clock = std::chrono::steady_clock;

    void waitFor(short events, Clock::time_point start, std::chrono::milliseconds timeout);
    [[noreturn]] void raiseExit();
    void disconnect() const;
    int end();

    const CString source;
    int socket = -1;
    pid_t process = -1; // -1 with threads, and after the end
    // Also true after a call that threw, because the process may still be working on it.
    bool isCalling = false;
    // The time at which the progress handler began to refuse; max() if it doesn't.
    Clock::time_point unwantedSince = Clock::time_point::max();
};
