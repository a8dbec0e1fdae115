#pragma once

#include "Base/Text.h"

class Diagnostics;
class MsgBase;
class SourceReport;
namespace CLI {
class App;
}

/// Where the command line wants to be told what was not carried over, and how.
struct ReportOptions
{
    CString file; ///< empty: nowhere, "-": standard error
    CString format = "text";
    bool isStrict = false; ///< losses are errors
};

/// Adds --report and the options that go with it, and --strict.
void addReportOptions(CLI::App& app, ReportOptions& options);

/// Writes the report of an import to where it is wanted. False when that can't be, which has then been reported.
bool writeReport(MsgBase& message, const ReportOptions& options);

/// Says what an import has lost: with --strict each loss as an error, else all in one warning, with --verbose each loss
/// before it. `other` is what was imported if the report to be written isn't of that.
void nameLosses(const SourceReport& report, const ReportOptions& options, Diagnostics& diagnostics,
                const CString& other = {});
