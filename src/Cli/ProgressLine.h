#pragma once

#include "Base/Progress.h"

#include <chrono>

/// While one lives, work that takes long tells on a terminal how far it has come: one line of standard error, written
/// over and over, that is gone in the end. Nothing is shown where standard error is no terminal.
class ProgressLine
{
public:
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Takes the line away, for who writes one to stay. It comes back.
    static void clear();

private:
    bool show(const Progress& progress);

    const ProgressHandler before;
    std::chrono::steady_clock::time_point next; // when it is to be written again
};
