#pragma once

#include "Base/Text.h"

class SourceReport;
namespace CLI {
class App;
}

/// Where the command line wants the files named that an import has read.
struct DependencyOptions
{
    CString file;          ///< empty: nowhere
    bool hasPhony = false; ///< with an empty rule for each file, so that make goes on when one is gone
};

/// Adds --depfile and the option that goes with it.
void addDependencyOptions(CLI::App& app, DependencyOptions& options);

/// Writes a rule by which `target` depends on every file that the import of `report` has read, as GNU make and ninja
/// read it. False if it can't be written, which has been reported; so has a name that no rule can hold.
bool writeDependencies(const SourceReport& report, const CString& target, const DependencyOptions& options);
