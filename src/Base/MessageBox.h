#pragma once

#include "Base/Text.h"

#include <functional>

/// Shows one message to the user and returns when the user has closed it. It runs in the thread that shows the message,
/// so the wizard's handler passes the message on to the window's thread.
using MessageBoxHandler = std::function<void(const CString& text, const CString& title)>;

/// Sets the handler of all later messages and returns the one before. The default handler writes "TITLE: TEXT" to
/// standard error. The wizard installs a modal box, the command line its diagnostics, tests a recorder. Call this
/// function only while no other thread may show messages. An empty handler drops all messages.
MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler);

/// Passes a message to the current handler. `details` is the cause in the words of the system, a driver or the broker;
/// the text doesn't contain it. An empty `details` means that there are none. The text alone describes the event.
void showMessageBox(const CString& text, const CString& title, const CString& details = {});

/// Returns the details of the message that the calling thread is showing, empty if it has none. For handlers. Valid
/// until the handler returns.
const CString& queryMessageDetails();
