#pragma once

#include "Base/Text.h"

class MsgBase;
namespace CLI {
class App;
}

/// Where the command line wants to be told what was not carried over, and how.
struct ReportOptions
{
    CString file; ///< empty: nowhere, "-": standard error
    CString format = "text";
};

/// Adds --report and the option that goes with it.
void addReportOptions(CLI::App& app, ReportOptions& options);

/// Writes the report of an import to where it is wanted. False when that can't be, which has then been reported.
bool writeReport(MsgBase& message, const ReportOptions& options);
