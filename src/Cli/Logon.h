#pragma once

#include "Base/Text.h"

namespace CLI {
class App;
}

/// The options of a logon. There are two: of the broker, and of a database as the source.
struct LogonOptions
{
    CString user;                               ///< empty: not given
    CString passwordFile;                       ///< empty: ask on the terminal
    const char* fileOption = "--password-file"; ///< its option, for messages
    const char* place = "";                     ///< where to log on, for the prompt
};

/// Adds the option for the user, by its name and description, and the one for the password's file. The file requires
/// the user. There is no option for the password itself, because arguments are visible in the list of processes.
void addLogonOptions(CLI::App& app, LogonOptions& options, const char* userOption, const char* userText,
                     const char* fileText);

/// Reads a password from the first line of the file, or without a file from the terminal (promptTerminal). Throws
/// std::runtime_error if there is none. From then on the process writes no core dump. The caller wipes `password`.
void readPassword(const LogonOptions& options, CString& password);
