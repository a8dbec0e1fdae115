#pragma once

#include "Base/Text.h"

#include <cstdint>
#include <functional>

/// The kinds of long work. Each is counted in its own unit. progressText() has its words in this order.
enum class Work
{
    waiting,   ///< for a database or a broker; not counted
    reading,   ///< a source, in bytes
    arranging, ///< source declarations into types, in elements
    tables,    ///< of a database, in tables
    writing,   ///< a document, in types
    creating   ///< in a broker, in types
};

/// The progress of a piece of work, in the unit of its kind.
struct Progress
{
    Work work = Work::waiting;
    std::uint64_t done = 0;
    std::uint64_t total = 0; ///< 0 if unknown
};

/// Returns a progress in words, for example "Reading: 120.5 MB of 1,000.0 MB".
CString progressText(const Progress& progress);

/// Receives the progress of the current work and returns whether to continue. It is called many times a second, in the
/// thread that does the work.
using ProgressHandler = std::function<bool(const Progress&)>;

/// Sets the handler and returns the one before. An empty handler lets all work continue. Call this function only while
/// no work runs. There is one handler for the process, without a lock: a thread started later sees it. The last
/// progress of the calling thread is forgotten.
ProgressHandler setProgressHandler(ProgressHandler handler);

/// Thrown to cancel the current work; its results so far are dropped. It does not derive from std::exception, so
/// handlers that report failures don't catch it. Code between the work and its caller must be safe to unwind.
struct Cancelled
{};

/// A scope in which the thread that created it works in the background: its work continues while `mayContinue` returns
/// true, and the progress handler is not called. Work in other threads is not affected. Scopes of one thread must not
/// be nested.
class BackgroundWork
{
public:
    /// `mayContinue` is called in this thread, as often as the progress handler would be.
    explicit BackgroundWork(std::function<bool()> mayContinue);
    ~BackgroundWork();
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;

    const std::function<bool()> mayContinue;
};

/// Passes `progress` to the handler and returns whether to continue. For work that ends in its own way if refused;
/// other work uses a ProgressMeter or throwIfCancelled().
bool reportProgress(const Progress& progress);

/// Polls the handler again with the last progress and returns whether to continue. For work that waits and has nothing
/// new to report.
bool isStillWanted();

/// Throws Cancelled unless isStillWanted().
void throwIfCancelled();

/// Reports the start of work whose steps are not counted. Throws Cancelled.
void beginWork(Work work);

/// For a loop whose steps are not counted: polls the handler once in `stride` passes and throws Cancelled if the
/// handler refuses. A pass that doesn't poll costs one decrement, so it may stand in an inner loop.
class CancelPoint
{
public:
    explicit CancelPoint(unsigned stride) : stride(stride), left(stride) {}

    /// Counts one pass.
    void pass()
    {
        if (--left == 0)
            ask();
    }

private:
    void ask();

    // Passes between two polls, at least 1, and passes left until the next one.
    unsigned stride;
    unsigned left;
};

/// For a counted loop: reports the progress once in `stride` steps. Other steps cost one decrement.
class ProgressMeter
{
public:
    /// Reports the start. Throws Cancelled, as step() does. `total` is 0 if unknown.
    ProgressMeter(Work work, std::uint64_t total, unsigned stride);

    /// Counts one step; `done` is the part of the total that is finished.
    void step(std::uint64_t done)
    {
        if (--left == 0)
            report(done);
    }

private:
    void report(std::uint64_t done);

    const Work work;
    const std::uint64_t total;
    const unsigned stride;
    unsigned left;
};
