#include "Base/Progress.h"

#include "Base/BackgroundWork.h"

#include <utility>

namespace {

ProgressHandler& currentHandler()
{
    static ProgressHandler handler;
    return handler;
}

// Kept for polls by work that has nothing new to report.
thread_local Progress last;

} // namespace

ProgressHandler setProgressHandler(ProgressHandler handler)
{
    last = {};
    return std::exchange(currentHandler(), std::move(handler));
}

bool reportProgress(const Progress& progress)
{
    last = progress;
    return isStillWanted();
}

bool isStillWanted()
{
    if (const BackgroundWork* const work = BackgroundWork::ofThread())
        return work->isWanted();
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
