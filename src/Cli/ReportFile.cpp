#include "Cli/ReportFile.h"

#include "Cli/Output.h"
#include "Cli/ProgressLine.h"
#include "Types/ReportText.h"

#include <CLI/CLI.hpp>

#include <cstdio>

void addReportOptions(CLI::App& app, ReportOptions& options)
{
    CLI::Option* const report =
        app.add_option("--report", options.file, "Write what was left out to this file (- is stderr)")
            ->type_name("FILE");
    app.add_option("--report-format", options.format, "Format of the report (default: text)")
        ->type_name("text|json")
        ->check(CLI::IsMember({"text", "json"}))
        ->needs(report);
}

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
