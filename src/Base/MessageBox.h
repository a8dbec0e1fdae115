#pragma once

#include "Base/Text.h"

#include <functional>

/// Shows one message to the user and returns when the user has closed it.
using MessageBoxHandler = std::function<void(const CString& text, const CString& title)>;

/// Sets the handler of all later messages and returns the one before. The default handler writes "TITLE: TEXT" to
/// standard error. The wizard installs a modal box, the command line its diagnostics, tests a recorder.
MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler);

/// What a message says about a source, in parts, for a handler with a format of its own.
struct SourceFault
{
    CString file;           ///< as the user gave it; empty if unknown
    CString reason;         ///< without file and place
    long line = 0;          ///< from 1; 0 if unknown
    long column = 0;        ///< from 1, in bytes; 0 if unknown
    bool isWarning = false; ///< true if the import continues
};

/// Passes a message to the current handler. `details` is the cause in the words of the system, a driver or the broker.
/// Neither `details` nor `fault` is part of the text.
void showMessageBox(const CString& text, const CString& title, const CString& details = {},
                    const SourceFault* fault = nullptr);

/// Returns the details of the message that the calling thread is showing, empty if it has none. For a handler.
const CString& queryMessageDetails();

/// Returns the source fault of that message, null if it has none. For a handler.
const SourceFault* queryMessageFault();
