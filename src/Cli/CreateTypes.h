#pragma once

#include "Base/Text.h"
#include "Cli/Diagnostics.h"
#include "Cli/Logon.h"

class MsgBase;
namespace CLI {
class App;
}

/// Where the command line wants the types created, and how.
struct CreateOptions
{
    CString address; ///< "SERVER[:PORT]"; empty when nothing is to be created
    bool trusted = false;
    CString overwrite; ///< "all", "none" or "ask"; empty: "ask" on a terminal, elsewhere "none" with a hint
};

/// Adds --create and the options that go with it alone, after those that it excludes.
void addCreateOptions(CLI::App& app, CreateOptions& options);

/// Creates the types of `message`, as the user that runs the program where `logon` has none, and writes one line for
/// each to standard output. Lines that can't be written don't keep a type from being created. Answers the exit status.
int createTypes(MsgBase& message, const CreateOptions& options, const LogonOptions& logon, Verbosity verbosity);
