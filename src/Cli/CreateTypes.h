#pragma once

#include "Base/Text.h"
#include "Cli/Diagnostics.h"
#include "Cli/Logon.h"

class MsgBase;
struct TypeSource;
namespace CLI {
class App;
}

/// Where the command line wants the types created, and how.
struct CreateOptions
{
    CString address; ///< "SERVER[:PORT]"; empty when nothing is to be created
    bool trusted = false;
    bool isDryRun = false; ///< nothing is created, but each type gets the line of what would become of it
    CString overwrite;     ///< "all", "none" or "ask"; empty: "ask" on a terminal, elsewhere "none" with a hint
};

/// Adds --create and the options that go with it alone, after those that it excludes.
void addCreateOptions(CLI::App& app, CreateOptions& options);

/// Creates the types of `message`, which come from `source`, and writes one line for each to standard output; a type
/// that exists with the same document is left as it is. Without a user in `logon` the current user logs on. Lines that
/// can't be written don't keep a type from being created. Returns the exit status, of a dry run the one that it would
/// be.
int createTypes(MsgBase& message, const TypeSource& source, const CreateOptions& options, const LogonOptions& logon,
                Verbosity verbosity);
