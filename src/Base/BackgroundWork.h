#pragma once

#include "Base/Text.h"

#include <functional>

/// A scope in which the thread that created it works in the background: its work continues while `isWanted` returns
/// true, its messages go to `messages`, and the handlers of progress and messages are not called.
class BackgroundWork
{
public:
    using Messages = std::function<void(const CString& text, const CString& title)>;

    BackgroundWork(std::function<bool()> isWanted, Messages messages);
    ~BackgroundWork();
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;

    /// Returns the scope of the calling thread, null if it has none.
    static const BackgroundWork* ofThread();

    const std::function<bool()> isWanted;
    const Messages messages;
};
