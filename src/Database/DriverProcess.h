#pragma once

#include "Base/Text.h"

#include <chrono>
#include <string_view>
#include <sys/types.h>

/// The process in which the driver of one connection works. A driver may crash, and may wait for a silent server for
/// ever; here neither ends or stops the program.
class DriverProcess
{
public:
    /// Starts the process, a fork of this one. `source` is the data source's name for messages, or empty. Raises
    /// CDBException if the system gives no process.
    explicit DriverProcess(CString source);

    /// Lets the driver disconnect, for a short time; a process in the middle of a call is killed.
    ~DriverProcess();

    DriverProcess(const DriverProcess&) = delete;
    DriverProcess& operator=(const DriverProcess&) = delete;

    /// Sends a request and returns the answer of DriverHost. Raises CDBException if none has come after `patience` or
    /// the process has ended, and Cancelled if it is no longer wanted (isStillWanted()); no further call can follow
    /// then.
    CString call(std::string_view request, std::chrono::milliseconds patience);

    /// From now on drivers work in threads of this process, where a fuzzer sees which code they reach.
    static void useThreads();

private:
    using Clock = std::chrono::steady_clock;

    void wait(short events, Clock::time_point start, std::chrono::milliseconds patience);
    [[noreturn]] void raiseEnd();
    void disconnect() const;
    int end();

    const CString source;
    int socket = -1;
    pid_t process = -1; // none with threads, and once it has ended
    bool isCalling = false;
    Clock::time_point unwantedSince = Clock::time_point::max();
};
