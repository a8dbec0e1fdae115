#pragma once

#include "Base/Text.h"

namespace CLI {
class App;
}

/// The options of a logon.
struct LogonOptions
{
    CString user;                               ///< empty: not given
    CString passwordFile;                       ///< empty: ask on the terminal
    const char* fileOption = "--password-file"; ///< its option, for messages
    const char* place = "";                     ///< where to log on, for the prompt
};

/// Adds the option for the user, by its name and description, and the one for the password's file.
void addLogonOptions(CLI::App& app, LogonOptions& options, const char* userOption, const char* userText,
                     const char* fileText);

/// Reads a password from the first line of the file, or from the terminal. Throws std::runtime_error if there is none.
/// From then on the process writes no core dump.
void readPassword(const LogonOptions& options, CString& password);
