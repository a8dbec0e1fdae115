#pragma once

#include "Base/Text.h"

namespace CLI {
class App;
}

/// As whom the command line wants to log on: to the broker where types are created, else to the data source.
struct LogonOptions
{
    CString user;         ///< empty: none was given
    CString passwordFile; ///< empty: the terminal is asked
};

/// Adds the two options.
void addLogonOptions(CLI::App& app, LogonOptions& options);

/// Reads the password: the first line of the file, or what the terminal is given. Raises std::runtime_error where there
/// is none. The process is kept out of core dumps from here on.
void readPassword(const LogonOptions& options, CString& password);
