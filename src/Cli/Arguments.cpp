#include "Cli/Arguments.h"

#include "Cli/Completion.h"
#include "Cli/Output.h"
#include "Files/File.h"
#include "Import/MsgBase.h"
#include "Resources/StringTable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>

namespace {

// For the completion of the shell, which so offers what there is.
void listImporters()
{
    for (MsgUIDescriptor** importer = g_amud; *importer; ++importer) {
        const ImporterSource& source = (*importer)->querySource();
        std::printf("%s\t%s\t%s\n", source.word, source.filterId ? loadText(source.filterId + 1) : "",
                    (*importer)->getName().c_str());
    }
}

// An unset variable of a script, in nearly every case. Only the root of the repository has no name.
void refuseEmptyNames(const CLI::App& app)
{
    for (const CLI::Option* option : app.get_options())
        if (option->nonpositional() && !option->check_name("--base-path"))
            for (const CString& value : option->results())
                if (trimmed(value).empty())
                    throw CLI::ValidationError(option->get_name(), "a name is missing");
}

// What stands without an option: an importer and its sources, or sources alone.
void takeWords(const std::vector<CString>& words, Arguments& arguments)
{
    arguments.importer = importerNamed(words.front());
    arguments.sources.assign(words.begin() + (arguments.importer != nullptr), words.end());
    if (arguments.sources.empty())
        throw CLI::ValidationError(words.front(), "what is its source?");
    const CString& first = words.front();
    if (!arguments.importer && words.size() > 1 && first != "-" && testReadable(first) == FileCause::fileNotFound)
        throw CLI::ValidationError(shownSource(first), "neither an importer (dtd, xml, xsd, btd, odbc) nor a file");
}

void addSourceOptions(CLI::App& app, Arguments& arguments, std::vector<CString>& words)
{
    app.add_option(
           "SOURCE", words,
           "How to read the source (dtd, xml, xsd, btd or odbc; left out, the source tells), then the source: a "
           "file, - for standard input; for odbc a data source name or a connection string; for xml any number")
        ->option_text("[dtd|xml|xsd|btd|odbc] FILE ...")
        ->required();
    app.add_option("-b,--base-path", arguments.basePath,
                   "Folder of the broker's repository under which the types are placed")
        ->type_name("PATH");
    app.add_option("-t,--table", arguments.tables, "odbc: a table to import, repeatable; without it all tables")
        ->type_name("NAME")
        ->allow_extra_args(false);
    addFullOptions(app, arguments.full);
}

void addOutputOptions(CLI::App& app, Arguments& arguments)
{
    app.add_option("-o,--output", arguments.output, "Write to this file, - for standard output, which is the default")
        ->type_name("FILE");
    CLI::Option* const list = app.add_flag("-l,--list", arguments.list,
                                           "List the types, a line each, instead of writing the message document");
    app.add_option("--type", arguments.type, "Write the document of this one type instead")
        ->type_name("NAME")
        ->excludes(list);
    CLI::Option* const graph =
        app.add_flag("--graph", arguments.graph, "Write the types and what they refer to as a graph, in DOT, instead")
            ->excludes(list, "--type");
    addDiffOptions(app, arguments.diff)->excludes(list, graph, "--type");
    app.add_flag("--json", arguments.json, "With --list and --diff: write JSON");
    app.add_flag("--allow-empty", arguments.allowEmpty, "Take a source from which no type comes for a success");
    CLI::Option* const quiet = app.add_flag_callback(
        "-q,--quiet", [&arguments] { arguments.verbosity = Verbosity::quiet; }, "Say errors alone");
    app.add_flag_callback(
           "-v,--verbose", [&arguments] { arguments.verbosity = Verbosity::verbose; },
           "Say all warnings, and how the source was read")
        ->excludes(quiet);
    addReportOptions(app, arguments.report);
}

void addHelpOptions(CLI::App& app)
{
    app.add_flag_callback(
        "--importers",
        [] {
            listImporters();
            throw CLI::Success();
        },
        "List the importers, a line each: word, tab, patterns of its files, tab, name");
    app.add_option_function<CString>(
           "--completion",
           [&app](const CString& shell) {
               std::fputs(completionFor(app, shell).c_str(), stdout);
               throw CLI::Success();
           },
           "Write what completes this program's command lines in a shell")
        ->type_name("bash|zsh|fish")
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

} // namespace

bool parseArguments(int argc, char** argv, Arguments& arguments, int& exitStatus)
{
    CLI::App app("Turns a description of business messages into type definitions for a message broker.",
                 "typeforge-import");
    app.set_version_flag("--version", "typeforge-import " TYPEFORGE_VERSION, "The version");
    app.set_help_flag("-h,--help", "This help");
    std::vector<CString> words;
    addSourceOptions(app, arguments, words);
    addOutputOptions(app, arguments);
    addHelpOptions(app);
    addLogonOptions(app, arguments.logon);
    addCreateOptions(app, arguments.create);
    try {
        app.parse(argc, argv);
        refuseEmptyNames(app);
        takeWords(words, arguments);
        if (arguments.json && !arguments.list && arguments.diff.document.empty())
            throw CLI::ValidationError("--json", "there is no JSON of it without --list or --diff");
        if (arguments.diff.document == "-" && std::ranges::find(arguments.sources, "-") != arguments.sources.end())
            throw CLI::ValidationError("--diff", "standard input can't be the source and the document, too");
        if (const CString mistake = arguments.importer ? mistakeFor(arguments, *arguments.importer) : "";
            !mistake.empty())
            throw CLI::ValidationError(mistake);
    } catch (const CLI::Success& end) {
        exitStatus = app.exit(end);
        if (Output output("-"); !output.finish())
            exitStatus = kNotWritten;
        return false;
    } catch (const CLI::ParseError& mistake) {
        exitStatus = reportMistake(mistake.what());
        return false;
    }
    arguments.hasBasePath = app.count("--base-path") > 0;
    arguments.hasType = app.count("--type") > 0;
    return true;
}

CString mistakeFor(const Arguments& arguments, const MsgUIDescriptor& importer)
{
    const CString word = importer.querySource().word;
    const std::unique_ptr<MsgBase> message(importer.create());
    if (arguments.full.isWanted && !importer.hasFull())
        return "--full: " + word + " has no full reading";
    if (arguments.sources.size() > 1 && !message->setFurtherFiles({}))
        return word + " reads one source at a time";
    if (!arguments.logon.user.empty() && arguments.create.address.empty() && !importer.querySource().readsTables)
        return "--user: there is nobody to log on to without --create";
    if (!arguments.tables.empty() && !importer.querySource().readsTables)
        return "--table: " + word + " reads no tables";
    return {};
}

int reportMistake(std::string_view mistake)
{
    report(mistake);
    std::fputs("Try typeforge-import --help\n", stderr);
    return kUsage;
}
