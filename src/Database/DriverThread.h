#pragma once

#include <chrono>
#include <functional>
#include <memory>

/// The thread in which the driver of one connection works, so that nobody else waits for it without an end: a driver
/// waits for a silent server for ever, and nothing but the end of the process ends that wait.
class DriverThread
{
public:
    enum class End
    {
        back,     ///< the call has returned
        late,     ///< it has not, in time
        unwanted, ///< it has not, and nobody wants it any more: isStillWanted()
    };

    DriverThread() = default;
    ~DriverThread();
    DriverThread(const DriverThread&) = delete;
    DriverThread& operator=(const DriverThread&) = delete;

    /// Runs `call` there and waits for it; what it raises is raised here. Where it isn't `back`, the thread is left to
    /// itself with it, so `call` has to own all that it touches; a further call gets a new thread.
    End run(std::chrono::milliseconds patience, std::function<void()> call);

private:
    struct State;

    End wait(std::chrono::milliseconds patience);
    void start();
    void leave();

    std::shared_ptr<State> state;                        // the thread's too; null without a thread
    std::chrono::steady_clock::time_point unwantedSince; // as long as nobody wants what is done here
};
