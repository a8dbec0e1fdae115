#include "Base/Progress.h"

#include <utility>

namespace {

ProgressHandler& currentHandler()
{
    static ProgressHandler handler;
    return handler;
}

// Kept for polls by work that has nothing new to report.
thread_local Progress last;

thread_local const BackgroundWork* background = nullptr;

} // namespace

ProgressHandler setProgressHandler(ProgressHandler handler)
{
    last = {};
    return std::exchange(currentHandler(), std::move(handler));
}

BackgroundWork::BackgroundWork(std::function<bool()> wanted) : isWanted(std::move(wanted))
{
    background = this;
}

BackgroundWork::~BackgroundWork()
{
    background = nullptr;
}

bool reportProgress(const Progress& progress)
{
    last = progress;
    return isStillWanted();
}

bool isStillWanted()
{
    if (background)
        return background->isWanted();
    const ProgressHandler& handler = currentHandler();
    return !handler || handler(last);
}

void throwIfCancelled()
{
    if (!isStillWanted())
        throw Cancelled();
}

void beginWork(Work work)
{
    last = {work};
    throwIfCancelled();
}

void CancelPoint::ask()
{
    left = stride;
    throwIfCancelled();
}

ProgressMeter::ProgressMeter(Work work, std::uint64_t total, unsigned stride) :
    work(work), total(total), stride(stride), left(stride)
{
    report(0);
}

void ProgressMeter::report(std::uint64_t done)
{
    left = stride;
    last = {work, done, total};
    throwIfCancelled();
}
