#include "Base/Progress.h"

#include <utility>

namespace {

// The process's handler, constructed on first use. Read without a lock, because it is only exchanged while no work
// runs, except background work, which never reads it. Starting and joining a thread orders the accesses.
ProgressHandler& currentHandler()
{
    static ProgressHandler handler;
    return handler;
}

// Kept for polls by work that has nothing new to report. Each thread has its own, because the preview of a source may
// work beside the window's import.
thread_local Progress last;

// The scope that this thread is in, null outside of one. The handler belongs to the work that the user has started, so
// background work asks its scope instead.
thread_local const BackgroundWork* background = nullptr;

// "1,234,567"
CString grouped(std::uint64_t number)
{
    CString text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, ",");
    return text;
}

// Rounds kilobytes up, so that a small source is not shown as 0 kB.
CString amount(std::uint64_t bytes)
{
    if (bytes < 100'000)
        return std::to_string((bytes + 999) / 1000) + " kB";
    const std::uint64_t tenths = bytes / 100'000;
    return grouped(tenths / 10) + "." + std::to_string(tenths % 10) + " MB";
}

} // namespace

ProgressHandler setProgressHandler(ProgressHandler handler)
{
    last = {};
    return std::exchange(currentHandler(), std::move(handler));
}

BackgroundWork::BackgroundWork(std::function<bool()> mayContinue) : mayContinue(std::move(mayContinue))
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
        return background->mayContinue();
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

CString progressText(const Progress& progress)
{
    // In the order of Work.
    static constexpr const char* words[] = {"Waiting for an answer", "Reading",       "Arranging the types",
                                            "Reading tables",        "Writing types", "Creating types"};
    const auto show = progress.work == Work::reading ? amount : grouped;
    CString text = words[static_cast<std::size_t>(progress.work)];
    if (progress.done != 0 || progress.total != 0)
        text += ": " + show(progress.done);
    if (progress.total != 0)
        text += " of " + show(progress.total);
    return text;
}
