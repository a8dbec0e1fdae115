#pragma once

#include <functional>

/// A scope in which the thread that created it works in the background: its work continues while `isWanted` returns
/// true, and the progress handler is not called.
class BackgroundWork
{
public:
    explicit BackgroundWork(std::function<bool()> isWanted);
    ~BackgroundWork();
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;

    /// Returns the scope of the calling thread, null if it has none.
    static const BackgroundWork* ofThread();

    const std::function<bool()> isWanted;
};
