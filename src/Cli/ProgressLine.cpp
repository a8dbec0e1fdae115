#include "Cli/ProgressLine.h"

#include <cstdio>
#include <unistd.h>
#include <utility>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// Work that takes less than kDelay shows nothing.
constexpr milliseconds kDelay(1000), kRefresh(200);
constexpr char kErase[] = "\r\033[K"; // to the end of the line (ECMA-48)

// True if the line is on the terminal, and if it must not come back. For the whole process, because clear() and end()
// are static.
bool isThere = false, isEnded = false;

} // namespace

ProgressLine::ProgressLine() :
    before(setProgressHandler([this](const Progress& progress) { return show(progress); })),
    next(steady_clock::now() + kDelay)
{}

ProgressLine::~ProgressLine()
{
    clear();
    setProgressHandler(before);
}

// Shows progress at most every kRefresh.
bool ProgressLine::show(const Progress& progress)
{
    const auto now = steady_clock::now();
    if (isEnded || now < next || isatty(STDERR_FILENO) == 0)
        return true;
    next = now + kRefresh;
    isThere = true;
    std::fprintf(stderr, "%s%s\r", kErase, progressText(progress).c_str());
    return true;
}

// The command works in one thread, so this needs no lock.
void ProgressLine::clear()
{
    if (std::exchange(isThere, false))
        std::fputs(kErase, stderr);
}

void ProgressLine::end()
{
    clear();
    isEnded = true;
}
