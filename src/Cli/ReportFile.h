#pragma once

#include "Base/Text.h"

class Diagnostics;
class MsgBase;
class SourceReport;
namespace CLI {
class App;
}

/// The options of --report, and --strict.
struct ReportOptions
{
    CString file; ///< empty: write none; "-": standard error
    CString format = "text";
    bool isStrict = false; ///< treat losses as errors
};

/// Adds --report, its options and --strict.
void addReportOptions(CLI::App& app, ReportOptions& options);

/// Writes the report of an import, if one is wanted. Returns false on failure, which has been reported, except on
/// standard error. After a failed import it covers the source up to the error.
bool writeReport(MsgBase& message, const ReportOptions& options);

/// Reports the losses of an import: with --strict each loss as an error, else all in one warning. With --verbose, those
/// that the import itself doesn't show come before it. `other` names the document if the report isn't about the
/// import's source. Does nothing without losses.
void reportLosses(const SourceReport& report, const ReportOptions& options, Diagnostics& diagnostics,
                  const CString& other = {});
