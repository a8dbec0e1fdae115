#pragma once

#include "Platform/Text.h"

class MsgBase;
namespace CLI {
class App;
}

/// Where the command line wants the types created, and as whom.
struct CreateOptions
{
    CString address;      ///< "SERVER[:PORT]"; empty when nothing is to be created
    CString user;         ///< empty: as the user that runs the program
    CString passwordFile; ///< empty: the terminal is asked
    bool trusted = false;
    CString overwrite = "ask"; ///< "all", "none" or "ask"
};

/// Adds --create and the options that go with it, after those that it excludes.
void addCreateOptions(CLI::App& app, CreateOptions& options);

/// Creates the types of `message` and writes one line for each to standard output. Answers the exit status.
int createTypes(MsgBase& message, const CreateOptions& options);
