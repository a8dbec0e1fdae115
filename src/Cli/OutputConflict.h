#pragma once

#include "Base/Text.h"

#include <vector>

struct Arguments;
class MsgUIDescriptor;
class SourceReport;

/// Returns the first output that is also an input of the command line, or that is written twice; empty if there is
/// none. `files` are the sources, or the data source of an importer of tables.
CString conflictingOutput(const Arguments& arguments, const MsgUIDescriptor& importer,
                          const std::vector<CString>& files);

/// Returns the first output that an import has read, because its sources refer to it; empty if there is none.
CString outputThatWasRead(const Arguments& arguments, const MsgUIDescriptor& importer, const SourceReport& report);
