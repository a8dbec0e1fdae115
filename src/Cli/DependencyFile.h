#pragma once

#include "Base/Text.h"

class SourceReport;
namespace CLI {
class App;
}

/// The options of --depfile.
struct DependencyOptions
{
    CString file;          ///< empty: write none
    bool hasPhony = false; ///< add an empty rule for each file, so that make continues after one is deleted
};

/// Adds --depfile and --depfile-phony.
void addDependencyOptions(CLI::App& app, DependencyOptions& options);

/// Writes a rule for GNU make and ninja that makes `target` depend on every file that the import of `source` has read.
/// Returns false on failure, which has been reported. A name that make or ninja can't read is a failure. Call it after
/// a successful import only, because a failed one may not have read all files.
bool writeDependencies(const SourceReport& report, const CString& source, const CString& target,
                       const DependencyOptions& options);
