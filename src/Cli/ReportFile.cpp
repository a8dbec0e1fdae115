#include "Cli/ReportFile.h"

#include "Cli/Diagnostics.h"
#include "Cli/Output.h"
#include "Cli/ProgressLine.h"
#include "Import/SourceReport.h"
#include "Types/ReportText.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace {

// Returns a hint to the list of losses with their places.
CString listingHint(const ReportOptions& options, std::size_t losses)
{
    const CString report = options.file.empty() ? "--report FILE" : options.file == "-" ? "the report" : options.file;
    return "; " + report + (losses == 1 ? " lists it" : " lists them");
}

} // namespace

void addReportOptions(CLI::App& app, ReportOptions& options)
{
    CLI::Option* const report =
        app.add_option("--report", options.file, "Write a report of losses and details to this file (- is stderr)")
            ->type_name("FILE");
    app.add_option("--report-format", options.format, "Format of the report (default: text)")
        ->type_name("text|json")
        ->check(CLI::IsMember({"text", "json"}))
        ->needs(report);
    app.add_flag("--strict", options.isStrict, "Fail if anything is lost; write and create nothing");
}

// Standard error is written directly: its failure can't be reported anywhere.
bool writeReport(MsgBase& message, const ReportOptions& options)
{
    const ReportFormat format = options.format == "json" ? ReportFormat::json : ReportFormat::text;
    if (options.file.empty())
        return true;
    if (options.file == "-") {
        ProgressLine::clear();
        writeReport(message, format,
                    [](std::string_view piece) { std::fwrite(piece.data(), 1, piece.size(), stderr); });
        return std::fflush(stderr) == 0 && std::ferror(stderr) == 0;
    }
    Output file(options.file);
    writeReport(message, format, [&file](std::string_view piece) { file.write(piece); });
    return file.finish();
}

// Losses that the importer has shown are not repeated by --verbose, but --strict makes an error of each, because a
// warning doesn't fail the import.
void reportLosses(const SourceReport& report, const ReportOptions& options, Diagnostics& diagnostics,
                  const CString& other)
{
    const std::size_t losses = report.queryTotal(SourceReport::loss);
    for (const SourceReport::Entry& entry : report.queryEntries(SourceReport::loss))
        if (options.isStrict || (diagnostics.isVerbose() && !SourceReport::rowFor(entry.construct).isShown))
            diagnostics.add(report.faultAt(entry.place, SourceReport::inWords(entry), !options.isStrict));
    if (losses > 0 && !options.isStrict)
        diagnostics.warning(report.lossesInWords() + (other.empty() ? listingHint(options, losses) : ""), other);
    if (const std::size_t unlisted = report.queryUnlisted(SourceReport::loss); unlisted > 0 && options.isStrict)
        diagnostics.error("... and " + countInWords(unlisted, "more loss", "more losses"));
}
