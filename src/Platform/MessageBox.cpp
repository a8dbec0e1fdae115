#include "Platform/MessageBox.h"

#include <cstdio>
#include <utility>

namespace {

void writeToStandardError(const CString& text, const CString& title)
{
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
}

MessageBoxHandler& currentHandler()
{
    static MessageBoxHandler handler = writeToStandardError;
    return handler;
}

} // namespace

MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler)
{
    return std::exchange(currentHandler(), std::move(handler));
}

void showMessageBox(const CString& text, const CString& title)
{
    if (const MessageBoxHandler& handler = currentHandler())
        handler(text, title);
}
