#pragma once

#include "Base/Text.h"

#include <functional>

/// Shows one message to the user and returns when the user has taken note of it.
using MessageBoxHandler = std::function<void(const CString& text, const CString& title)>;

/// Sets who shows messages from now on and returns the one before. Until the first call a message goes to standard
/// error as "TITLE: TEXT". The wizard installs its modal box, the command line its own line, a test records.
MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler);

/// What a message says of a source, in parts, for who shows it in a form of its own.
struct SourceFault
{
    CString file;           ///< as it was given; "" where the import knows of none
    CString reason;         ///< without file and place
    long line = 0;          ///< counted from 1; 0 where none is known
    long column = 0;        ///< the same, in bytes
    bool isWarning = false; ///< the import goes on
};

/// Hands a message to the handler in force. `details` is why it came to it, in the words of the system, a driver or the
/// broker; it is no part of the text, as `fault` isn't.
void showMessageBox(const CString& text, const CString& title, const CString& details = {},
                    const SourceFault* fault = nullptr);

/// For a handler: the details of the message that it is handed, "" where it has none. They are those of the thread that
/// the message comes from.
const CString& queryMessageDetails();

/// The same for what it says of a source; null where that is nothing.
const SourceFault* queryMessageFault();
