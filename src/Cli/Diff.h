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

/// The options of --diff. Allowed changes are listed as well, but don't count for the exit status or the verdict.
struct DiffOptions
{
    CString document; ///< the earlier document, "-" for standard input, or a repository; empty: compare nothing
    CString compatible = "readers"; ///< whose compatibility counts: readers, writers or both
    std::vector<CString> allowed;   ///< ids of changes to accept
    bool asJson = false;            ///< write the differences as JSON
    bool ignoreFolders = false;     ///< accept another base path or main element

    /// Returns whether `document` names a repository.
    bool isRepository() const { return document.starts_with(kBroker); }
};

/// Adds --diff and its options. Returns --diff.
CLI::Option* addDiffOptions(CLI::App& app, DiffOptions& options);

/// Compares the types of an import with an earlier document, and writes the differences as lines or as one JSON object.
/// Losses in reading the document are reported as `report` demands. Returns the exit status of diff(1): 0 if all
/// changes are accepted or there are none, 1 if there are others, 2 on failure, which has been reported. The document
/// of a repository must have been kept before, see keepRepository().
int diffTypes(MsgBase& message, const DiffOptions& options, const ReportOptions& report, Output& output,
              Diagnostics& diagnostics);
