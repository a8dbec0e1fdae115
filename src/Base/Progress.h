#pragma once

#include <cstdint>
#include <functional>

/// What takes long. Each is counted in units of its own.
enum class Work
{
    waiting,   ///< for a database or a broker: nothing to count
    reading,   ///< a source: bytes
    arranging, ///< what has been read into types: elements
    tables,    ///< of a database, being read
    writing,   ///< types into a document
    creating   ///< types in a broker
};

/// How far a work has come.
struct Progress
{
    Work work = Work::waiting;
    std::uint64_t done = 0;
    std::uint64_t total = 0; ///< 0: not known
};

/// Takes note of how far the work in hand has come, and answers whether it is to go on. It is called in the thread that
/// does the work, many times a second.
using ProgressHandler = std::function<bool(const Progress&)>;

/// Sets who is told of long work from now on and returns the one before. Without one nobody is told and all work goes
/// on. To be called while nothing works.
ProgressHandler setProgressHandler(ProgressHandler handler);

/// Ends a work that is not to go on; what it has made so far goes. It is no failure, so nobody who catches
/// std::exception to tell of one gets it.
struct Cancelled
{};

/// Tells the handler and answers whether the work is to go on.
bool tellProgress(const Progress& progress);

/// Tells the same as the last time once more, for who waits meanwhile.
bool isStillWanted();

/// Raises Cancelled when it isn't.
void checkWanted();

/// Tells that a work begins that nobody counts. Raises Cancelled.
void beginWork(Work work);

/// For a loop that nobody counts: raises Cancelled at one of each `stride` passes, when the work isn't wanted any more.
class CancelPoint
{
public:
    explicit CancelPoint(unsigned stride) : stride(stride), left(stride) {}

    void pass()
    {
        if (--left == 0)
            ask();
    }

private:
    void ask();

    unsigned stride;
    unsigned left;
};

/// For a loop: tells how far it has come each `stride` steps, and costs a count in between.
class ProgressMeter
{
public:
    /// Tells of the start. Raises Cancelled, as step() does.
    ProgressMeter(Work work, std::uint64_t total, unsigned stride);

    /// One step; `done` of the total is behind.
    void step(std::uint64_t done)
    {
        if (--left == 0)
            tell(done);
    }

private:
    void tell(std::uint64_t done);

    const Work work;
    const std::uint64_t total;
    const unsigned stride;
    unsigned left;
};
