#pragma once

#include "Base/Progress.h"

#include <chrono>

/// Shows the progress of long work on standard error as long as the object lives: one line that is overwritten, and
/// erased at the end. Nothing is shown if standard error is not a terminal. Sets the progress handler, and restores the
/// one before. Only one object may exist at a time.
class ProgressLine
{
public:
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Erases the line, so that another one can be written to standard error. The next progress shows it again. Works
    /// without an object.
    static void clear();

    /// Erases the line for good, because standard output goes to the terminal from now on: another line would erase
    /// text there that has no line break yet.
    static void end();

private:
    bool show(const Progress& progress);

    const ProgressHandler before;
    std::chrono::steady_clock::time_point next; // time of the next refresh
};
