#include "Database/DriverThread.h"

#include "Base/Progress.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <dlfcn.h>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr milliseconds kTick(50);
constexpr milliseconds kGrace(500); // for calls that are under way when they are no longer wanted

constexpr steady_clock::time_point kNever = steady_clock::time_point::max();

// Signals are for the threads of the program; one that waits for a server has no business with them.
template <class Run>
std::thread startWithoutSignals(Run run)
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        std::thread thread(std::move(run));
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        return thread;
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw;
    }
}

// A thread that has been left to itself returns to this code one day, also out of a library that nobody needs any more.
void keepThisCodeLoaded()
{
    static const char here = 0;
    Dl_info self;
    if (dladdr(&here, &self) != 0)
        dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

} // namespace

struct DriverThread::State
{
    std::mutex mutex;
    std::condition_variable called, returned;
    std::function<void()> call; // null when there is none, or it has returned
    std::exception_ptr raised;
    bool isOver = false;
    std::thread thread;

    void work()
    {
        std::unique_lock lock(mutex);
        for (;;) {
            called.wait(lock, [this] { return call || isOver; });
            if (!call)
                return;
            lock.unlock();
            std::exception_ptr error = attempt();
            lock.lock();
            raised = std::move(error);
            call = nullptr;
            returned.notify_one();
        }
    }

private:
    std::exception_ptr attempt() const
    {
        try {
            call();
            return {};
        } catch (...) {
            return std::current_exception();
        }
    }
};

DriverThread::~DriverThread()
{
    if (!state)
        return;
    {
        const std::lock_guard lock(state->mutex);
        state->isOver = true;
    }
    state->called.notify_one();
    state->thread.join();
}

DriverThread::End DriverThread::run(milliseconds patience, std::function<void()> call)
{
    if (!state)
        start();
    {
        const std::lock_guard lock(state->mutex);
        state->call = std::move(call);
    }
    state->called.notify_one();
    const End end = wait(patience);
    if (end != End::back)
        leave();
    else if (state->raised)
        std::rethrow_exception(std::exchange(state->raised, {}));
    return end;
}

void DriverThread::start()
{
    unwantedSince = kNever;
    auto made = std::make_shared<State>();
    made->thread = startWithoutSignals([made] { made->work(); });
    state = std::move(made);
}

// A call that is nearly done is not cut off, so that what it does is known; many of them get no more time than one.
DriverThread::End DriverThread::wait(milliseconds patience)
{
    const auto start = steady_clock::now();
    std::unique_lock lock(state->mutex);
    while (!state->returned.wait_for(lock, std::min(kTick, patience), [this] { return !state->call; })) {
        const auto now = steady_clock::now();
        unwantedSince = isStillWanted() ? kNever : std::min(unwantedSince, now);
        if (now - start >= patience)
            return End::late;
        if (unwantedSince != kNever && now - unwantedSince >= kGrace)
            return End::unwanted;
    }
    return End::back;
}

void DriverThread::leave()
{
    keepThisCodeLoaded();
    const std::shared_ptr<State> left = std::move(state);
    const std::lock_guard lock(left->mutex);
    left->isOver = true;
    left->thread.detach();
}
