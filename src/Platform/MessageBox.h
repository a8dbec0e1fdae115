#pragma once

#include "Platform/Text.h"

#include <functional>

/// Shows one message to the user and returns when the user has taken note of it.
using MessageBoxHandler = std::function<void(const CString& text, const CString& title)>;

/// Sets who shows messages from now on and returns the one before. Until the first call a message goes to standard
/// error as "TITLE: TEXT". The wizard installs its modal box, the command line its own line, a test records.
MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler);

/// Hands a message to the handler in force. `details` is why it came to it, in the words of the system, a driver or the
/// broker; it is no part of the text.
void showMessageBox(const CString& text, const CString& title, const CString& details = {});

/// For a handler: the details of the message that it is handed, "" where it has none. They are those of the thread that
/// the message comes from.
const CString& queryMessageDetails();
