#include "Platform/Database/DriverCall.h"

#include <csignal>
#include <dlfcn.h>
#include <future>
#include <thread>

namespace {

// Signals are for the threads of the program; one that waits for a server has no business with them.
std::thread startWithoutSignals(std::packaged_task<void()> task)
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        std::thread thread(std::move(task));
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
    Dl_info self;
    if (dladdr(reinterpret_cast<void*>(&callDriver), &self) != 0)
        dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

} // namespace

bool callDriver(std::chrono::milliseconds patience, std::function<void()> call)
{
    std::packaged_task<void()> task(std::move(call));
    std::future<void> result = task.get_future();
    std::thread thread = startWithoutSignals(std::move(task));
    if (result.wait_for(patience) != std::future_status::ready) {
        keepThisCodeLoaded();
        thread.detach();
        return false;
    }
    thread.join();
    result.get();
    return true;
}
