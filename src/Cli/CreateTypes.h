#pragma once

#include "Base/Text.h"
#include "Cli/Diagnostics.h"
#include "Cli/Logon.h"

class MsgBase;
struct TypeSource;
namespace CLI {
class App;
}

/// The options of --create.
struct CreateOptions
{
    CString address; ///< "SERVER[:PORT]"; empty: create nothing
    bool trusted = false;
    bool isDryRun = false; ///< create nothing, but print for each type what would happen
    CString overwrite;     ///< "all", "none" or "ask"; empty: "ask" on a terminal, else "none" with a hint
};

/// Adds --create and the options that require it. Call it after adding the options that --create excludes, because
/// CLI11 looks them up by name at once.
void addCreateOptions(CLI::App& app, CreateOptions& options);

/// Creates the types of `message` in a broker, and prints one line for each. A type that exists with the same document
/// is left unchanged. `source` is recorded as the origin of the types. Without a user in `logon` the current user logs
/// on. If lines can't be printed, types are still created. Returns the exit status; a dry run returns the status that a
/// real run would.
int createTypes(MsgBase& message, const TypeSource& source, const CreateOptions& options, const LogonOptions& logon,
                Verbosity verbosity);
