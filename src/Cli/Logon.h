#pragma once

#include "Base/Text.h"

namespace CLI {
class App;
}

/// As whom the command line wants to log on.
struct LogonOptions
{
    CString user;         ///< empty: none was given
    CString passwordFile; ///< empty: the terminal is asked
    const char* fileOption = "--password-file";
    const char* place = ""; ///< where, in the question for the password
};

/// Adds --user and --password-file, which are the broker's if types are created there, else the data source's.
void addLogonOptions(CLI::App& app, LogonOptions& options);

/// Adds --source-user and --source-password-file, which are always the data source's.
void addSourceLogonOptions(CLI::App& app, LogonOptions& options);

/// Reads the password: the first line of the file, or what the terminal is given. Raises std::runtime_error if there
/// is none. The process is kept out of core dumps from here on.
void readPassword(const LogonOptions& options, CString& password);
