#pragma once

#include "Base/Text.h"

#include <functional>

/// While one lives, the thread that made it works in the background: its work goes on as long as `isWanted` says so,
/// its messages go to `messages`, and the handlers of progress and messages hear of neither.
class BackgroundWork
{
public:
    using Messages = std::function<void(const CString& text, const CString& title)>;

    BackgroundWork(std::function<bool()> isWanted, Messages messages);
    ~BackgroundWork();
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;

    /// That of this thread; null if it works for somebody who waits.
    static const BackgroundWork* ofThread();

    const std::function<bool()> isWanted;
    const Messages messages;
};
