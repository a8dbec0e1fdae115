#pragma once

#include "Base/Text.h"
#include "Cli/Broker.h"

#include <vector>

class Diagnostics;
class MsgBase;
class Output;
struct ReportOptions;
namespace CLI {
class App;
class Option;
} // namespace CLI

/// What the command line wants compared, and which changes count.
struct DiffOptions
{
    CString document;               ///< written earlier; "-": standard input; a repository; empty: nothing is compared
    CString compatible = "readers"; ///< whom a change must not break: readers, writers or both
    std::vector<CString> allowed;   ///< ids of changes that don't count
    bool asJson = false;
    bool ignoreFolders = false; ///< another base path or main element is no difference

    bool isRepository() const { return document.starts_with(kBroker); }
};

/// Adds --diff and the options that go with it; the answer is --diff.
CLI::Option* addDiffOptions(CLI::App& app, DiffOptions& options);

/// Compares the types of an import with those of a document that was written earlier, and writes the differences, a
/// line each, or as one JSON object. What the document itself lost is said as `report` wants it. Returns the exit
/// status of diff(1): 0 if no change counts, 1 if one does, 2 for trouble, which has been reported.
int diffTypes(MsgBase& message, const DiffOptions& options, const ReportOptions& report, Output& output,
              Diagnostics& diagnostics);
