#include "Cli/DependencyFile.h"

#include "Cli/Diagnostics.h"
#include "Cli/Output.h"
#include "Files/FileMessage.h"
#include "Import/SourceReport.h"

#include <CLI/CLI.hpp>

#include <set>
#include <vector>

namespace {

// Escapes a name as compilers do. GNU make and ninja remove a backslash before a blank, '#' or ':', and one of two '$'.
// Other backslashes stay, so those in front of a blank are doubled.
CString escaped(const CString& name)
{
    CString out;
    std::size_t backslashes = 0;
    for (const char c : name) {
        if (c == ' ' || c == '\t' || c == '#' || c == ':')
            out.append(backslashes + 1, '\\');
        else if (c == '$')
            out += '$';
        backslashes = c == '\\' ? backslashes + 1 : 0;
        out += c;
    }
    return out;
}

// Returns whether make and ninja can read a name in a rule. They have no common way to escape these characters; in a
// target, '%' makes a pattern.
bool isMakefileName(const CString& name, bool isTarget)
{
    return name.find_first_of(isTarget ? "\r\n*?|&;=%" : "\r\n*?|&;=") == CString::npos;
}

// Returns each file once, in the order of reading. Standard input is skipped, because it is not a file that could
// change.
std::vector<CString> filesOf(const SourceReport& report)
{
    std::vector<CString> files;
    std::set<CString> known;
    for (std::uint32_t file = 0; file < report.fileCount(); ++file)
        if (const CString& name = report.fileNameOf(file);
            !name.empty() && name != kStandardInput && known.insert(name).second)
            files.push_back(name);
    return files;
}

} // namespace

void addDependencyOptions(CLI::App& app, DependencyOptions& options)
{
    CLI::Option* const file =
        app.add_option("--depfile", options.file, "Write a make rule with the files that were read")
            ->type_name("FILE")
            ->needs("--output");
    app.add_flag("--depfile-phony", options.hasPhony, "Add an empty rule for each further file")->needs(file);
}

// Nothing is written if a name doesn't fit, because a rule without that file would hide its changes from a build.
bool writeDependencies(const SourceReport& report, const CString& source, const CString& target,
                       const DependencyOptions& options)
{
    const std::vector<CString> files = filesOf(report);
    CString rule = escaped(target) + ":";
    CString phony;
    for (const CString& file : files) {
        if (const bool isFile = !isMakefileName(file, false); isFile || !isMakefileName(target, true)) {
            ::report("can't write " + options.file + ": make and ninja can't read the name " +
                     shownFile(isFile ? file : target));
            return false;
        }
        rule += " \\\n  " + escaped(file);
        if (options.hasPhony && file != source) // a rule for the source would hide that it was deleted
            phony += "\n" + escaped(file) + ":\n";
    }
    Output output(options.file);
    output.write(rule + "\n" + phony);
    return output.finish();
}
