#include "Base/MessageBox.h"

#include <cstdio>
#include <utility>

namespace {

void writeToStandardError(const CString& text, const CString& title)
{
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
}

MessageBoxHandler& currentHandler()
{
    // Constructed on first use, because other units may set a handler during their own initialisation.
    static MessageBoxHandler handler = writeToStandardError;
    return handler;
}

// Of the message being shown. Thread-local, because an import can run in a thread beside the window's.
thread_local const CString* currentDetails = nullptr;

} // namespace

MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler)
{
    return std::exchange(currentHandler(), std::move(handler));
}

void showMessageBox(const CString& text, const CString& title, const CString& details)
{
    struct Restorer // of the outer details, because handlers may show messages, and throw
    {
        const CString* outer;
        ~Restorer() { currentDetails = outer; }
    } const restorer{std::exchange(currentDetails, &details)};
    // Not copied, so a handler must not replace itself.
    if (const MessageBoxHandler& handler = currentHandler())
        handler(text, title);
}

const CString& queryMessageDetails()
{
    static const CString none;
    return currentDetails != nullptr ? *currentDetails : none;
}
