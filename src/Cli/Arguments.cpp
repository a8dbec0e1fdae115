#include "Cli/Arguments.h"

#include "Base/Utf8.h"
#include "Cli/Completion.h"
#include "Cli/HelpText.h"
#include "Cli/Output.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Files/SameFile.h"
#include "Import/Full/FullMessage.h"
#include "Import/MsgBase.h"
#include "Resources/StringTable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <span>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace {

// Appends the non-empty lines of a file. Editors on Windows end lines with CR LF and begin a file with a byte order
// mark, which would become parts of arguments.
void addLines(const CString& fileName, std::vector<CString>& arguments)
{
    CString text;
    if (const FileCause cause = readFile(fileName, text); cause != FileCause::none)
        throw std::runtime_error("can't open " + fileName + ": " + inWords(fileName, cause));
    std::istringstream lines(text.substr(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0));
    for (CString line; std::getline(lines, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (!line.empty())
            arguments.push_back(line);
    }
}

// Returns the arguments without the program's name, with "@FILE" replaced by the lines of that file. A line is taken as
// it is, even if it begins with '@'; so is every argument after "--". Appends the names of the files to `files`. Throws
// std::runtime_error if a file can't be read. Such a file can be longer than a command line.
std::vector<CString> argumentsOf(int argc, char** argv, std::vector<CString>& files)
{
    std::vector<CString> arguments;
    bool areTaken = true;
    for (const std::string_view argument : std::span(argv, static_cast<std::size_t>(argc)).subspan(argc > 0)) {
        areTaken = areTaken && argument != "--";
        if (areTaken && argument.size() > 1 && argument.front() == '@') {
            files.emplace_back(argument.substr(1));
            addLines(files.back(), arguments);
        } else {
            arguments.emplace_back(argument);
        }
    }
    return arguments;
}

// Returns the output of --importers; shell completion reads its columns. The columns are the importer's word, the
// patterns of its files, and its name.
CString importerList()
{
    CString list;
    for (MsgUIDescriptor** importer = g_amud; *importer; ++importer) {
        const ImporterSource& source = (*importer)->querySource();
        list += formatText("%s\t%s\t%s\n", source.word, source.filterId ? loadText(source.filterId + 1) : "",
                           (*importer)->getName().c_str());
    }
    return list;
}

// Rejects options with an empty value, usually an unset variable in a script. Only --base-path may be empty: the root
// of the repository has no name.
void refuseEmptyNames(const CLI::App& app)
{
    for (const CLI::Option* option : app.get_options())
        if (option->nonpositional() && !option->check_name("--base-path"))
            for (const CString& value : option->results())
                if (trimmed(value).empty())
                    throw CLI::ValidationError(option->get_name(), "a name is missing");
}

// Splits the positional arguments into the importer, if the first one names it, and the sources. A first word that is
// neither is most likely a misspelt importer, so the error names both. One word alone may also be a connection string.
void assignOperands(const std::vector<CString>& words, Arguments& arguments)
{
    if (words.empty())
        throw CLI::RequiredError("SOURCE");
    if (std::ranges::find(words, CString()) != words.end())
        throw CLI::ValidationError("SOURCE", "a name is missing");
    arguments.importer = importerNamed(words.front());
    arguments.sources.assign(words.begin() + (arguments.importer != nullptr), words.end());
    if (arguments.sources.empty())
        throw CLI::ValidationError(words.front(), "a source is missing");
    const CString& first = words.front();
    if (!arguments.importer && words.size() > 1 && first != "-" && testReadable(first) == FileCause::fileNotFound)
        throw CLI::ValidationError(shownSource(first), "neither an importer (see --importers) nor a file");
}

// Returns whether the command reads standard input. A terminal doesn't count, because more can be typed there. A file
// would be read again from its start. The answers to --overwrite would be read from that text: a document that begins
// with "a" would replace all types.
bool isStandardInputRead(const Arguments& arguments)
{
    std::vector<CString> inputs = arguments.sources;
    inputs.insert(inputs.end(), arguments.argumentFiles.begin(), arguments.argumentFiles.end());
    inputs.push_back(arguments.logon.passwordFile);
    inputs.push_back(arguments.sourceLogon.passwordFile);
    return isatty(STDIN_FILENO) == 0 && std::ranges::any_of(inputs, [](const CString& name) {
               return name == "-" || (!name.empty() && isSameFile(name, kStandardInput));
           });
}

// Checks options of different units against each other, whatever the importer is.
void checkTogether(const Arguments& arguments)
{
    if (arguments.json && !arguments.list && arguments.diff.document.empty())
        throw CLI::ValidationError("--json", "requires --list or --diff");
    if (arguments.output == "-" && !arguments.dependencies.file.empty())
        throw CLI::ValidationError("--depfile", "requires a file as --output");
    if (arguments.diff.document == "-" && std::ranges::find(arguments.sources, "-") != arguments.sources.end())
        throw CLI::ValidationError("--diff", "standard input can't be both the source and the document");
    if (arguments.create.overwrite == "ask" && isStandardInputRead(arguments))
        throw CLI::ValidationError("--overwrite", "standard input can't hold both an input and the answers");
}

// The description of the positional argument is printed by helpText() as it stands, so its lines are laid out here.
void addSourceOptions(CLI::App& app, Arguments& arguments, std::vector<CString>& words)
{
    app.add_option("SOURCE", words,
                   "  IMPORTER                  dtd, xml, xsd, btd, odbc, wsdl, jsonschema,\n"
                   "                            openapi, avro or json (default: by the source)\n"
                   "  SOURCE                    A file, or - for standard input; for odbc a data\n"
                   "                            source name or a connection string. Several files\n"
                   "                            and folders make one source: for dtd and xsd with\n"
                   "                            --full, for btd and odbc never\n"
                   "  @FILE                     Read further arguments from this file, one per line\n");
    app.add_flag("--recursive", arguments.isRecursive, "Include the files of subfolders");
    app.add_option("-t,--table", arguments.tables,
                   "odbc: import this table, repeatable (default: all); SCHEMA.TABLE or DATABASE.TABLE picks one of "
                   "several, _ and % match any character and text")
        ->type_name("NAME")
        ->allow_extra_args(false);
}

void addReadingOptions(CLI::App& app, Arguments& arguments)
{
    app.add_option_function<CString>(
           "-b,--base-path", [&arguments](const CString& path) { arguments.basePath = path; },
           "Place the types under this folder of the broker")
        ->type_name("PATH");
    addFullOptions(app, arguments.full);
    app.add_flag("--allow-empty", arguments.allowEmpty, "Exit 0 even if no types result");
}

void addOutputOptions(CLI::App& app, Arguments& arguments)
{
    app.add_option("-o,--output", arguments.output, "Write to this file (default: standard output)")->type_name("FILE");
    app.add_flag("--always", arguments.always, "Write the file even if nothing changed")->needs("--output");
    CLI::Option* const list = app.add_flag("-l,--list", arguments.list, "List the types instead, one per line");
    app.add_option("--type", arguments.type, "Write the document of this type only")->type_name("NAME")->excludes(list);
    app.add_flag("--pretty", arguments.pretty, "With --type: indent it (default on a terminal)")->needs("--type");
    CLI::Option* const graph = app.add_flag("--graph", arguments.graph, "Write a graph of the types instead, in DOT")
                                   ->excludes(list, "--type");
    addDiffOptions(app, arguments.diff)->excludes(list, graph, "--type");
    app.add_flag("--json", arguments.json, "With --list or --diff: write JSON");
    addReportOptions(app, arguments.report);
    addDependencyOptions(app, arguments.dependencies);
}

// Adds the options under "Other". The output of --importers and --completion goes to `answer`.
void addOtherOptions(CLI::App& app, Arguments& arguments, CString& answer)
{
    CLI::Option* const quiet = app.add_flag_callback(
        "-q,--quiet", [&arguments] { arguments.verbosity = Verbosity::quiet; }, "Print errors only");
    app.add_flag_callback(
           "-v,--verbose", [&arguments] { arguments.verbosity = Verbosity::verbose; },
           "Print all warnings and the chosen importer")
        ->excludes(quiet);

    app.add_flag_callback(
        "--importers",
        [&answer] {
            answer = importerList();
            throw CLI::Success();
        },
        "List the importers with file patterns and names");
    app.add_option_function<CString>(
           "--completion",
           [&app, &answer](const CString& shell) {
               answer = completionFor(app, shell);
               throw CLI::Success();
           },
           "Print a completion script for this shell")
        ->type_name("bash|zsh|fish")
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

// Adds all options. They get the group that is the default when they are added; helpText() prints the groups in its own
// order.
void addOptions(CLI::App& app, Arguments& arguments, std::vector<CString>& words, CString& answer)
{
    const auto group = [&app](const char* name) -> CLI::App& {
        app.option_defaults()->group(name);
        return app;
    };
    group("Other");
    app.set_version_flag("--version", "typeforge-import " TYPEFORGE_VERSION, "Print the version");
    app.set_help_flag("-h,--help", "Print this help");
    addSourceOptions(group("Input"), arguments, words);
    addLogonOptions(app, arguments.sourceLogon, "--source-user", "odbc: log on to the database as this user",
                    "odbc: read that password from this file's first line");
    addReadingOptions(group("Reading"), arguments);
    addOutputOptions(group("Output"), arguments);
    addCreateOptions(group("Broker"), arguments.create);
    addLogonOptions(app, arguments.logon, "--user", "Log on as this user (without --create: to the database)",
                    "Read the password from this file's first line");
    app.get_option("--user")->excludes("--trusted");
    addOtherOptions(group("Other"), arguments, answer);
}

} // namespace

// CLI11 reports by exceptions: CLI::Success for --help and its like, CLI::ParseError for an invalid command line.
// CLI11's own exit status is not used for the latter.
bool parseArguments(int argc, char** argv, Arguments& arguments, int& exitStatus)
{
    CLI::App app("Turn a description of business messages into type definitions for a message\nbroker.",
                 "typeforge-import");
    app.formatter_fn([](const CLI::App* shown, const CString&, CLI::AppFormatMode) { return helpText(*shown); });
    std::vector<CString> words;
    CString answer;
    addOptions(app, arguments, words, answer);
    try {
        std::vector<CString> given = argumentsOf(argc, argv, arguments.argumentFiles);
        std::ranges::reverse(given); // parse(vector) expects the last argument first
        app.parse(std::move(given));
        refuseEmptyNames(app);
        assignOperands(words, arguments);
        checkTogether(arguments);
        // Without a named importer, this is checked when the importer has been chosen.
        if (const CString usageError = arguments.importer ? usageErrorFor(arguments, *arguments.importer) : "";
            !usageError.empty())
            throw CLI::ValidationError(usageError);
    } catch (const CLI::Success& end) {
        std::ostringstream text;
        exitStatus = app.exit(end, text, text);
        Output output("-");
        output.write(answer + text.str());
        if (!output.finish())
            exitStatus = kNotWritten;
        return false;
    } catch (const std::runtime_error& usageError) { // CLI::ParseError, or a file of arguments that can't be read
        exitStatus = reportUsageError(usageError.what());
        return false;
    }
    arguments.diff.asJson = arguments.json;
    return true;
}

// Creates the importer, because only the object knows whether it reads sets and entities: setFurtherFiles({}) and
// setEntities({}) return it.
CString usageErrorFor(const Arguments& arguments, const MsgUIDescriptor& importer)
{
    const CString word = importer.querySource().word;
    if (arguments.full.isWanted && !importer.readsSets())
        return "--full: " + word + " has no full reading";
    const std::unique_ptr<MsgBase> message(createImporter(arguments.full, importer));
    auto* const full = dynamic_cast<FullMessage*>(message.get());
    if (const char* const option = arguments.full.optionOfFull(); *option != 0 && !full)
        return option + (importer.hasFull() ? " requires --full" : ": " + word + " has no full reading");
    if (!arguments.full.catalogs.empty() && !importer.readsCatalogs())
        return "--catalog: " + word + " reads no catalogues";
    if (!arguments.full.entities.empty() && (!full || !full->setEntities({})))
        return "--entity: " + word + " has no parameter entities";
    const bool readsSeveral = message->setFurtherFiles({});
    if (arguments.sources.size() > 1 && !readsSeveral)
        return word + " reads one source at a time" +
               (importer.hasFull() && !arguments.full.isWanted ? "; with --full it reads several" : "");
    if (arguments.isRecursive && !readsSeveral)
        return "--recursive" + (importer.hasFull() ? " requires --full" : ": " + word + " reads no folders");
    if (!arguments.logon.user.empty() && !arguments.usesBroker() && !importer.querySource().readsTables)
        return "--user has no effect without --create";
    if (!arguments.sourceLogon.user.empty() && !importer.querySource().readsTables)
        return "--source-user: " + word + " reads no tables";
    if (!arguments.sourceLogon.user.empty() && !arguments.logon.user.empty() && !arguments.usesBroker())
        return "--user and --source-user both name the database's user without --create; give one";
    if (!arguments.tables.empty() && !importer.querySource().readsTables)
        return "--table: " + word + " reads no tables";
    if (!arguments.dependencies.file.empty() && importer.querySource().readsTables)
        return "--depfile: " + word + " reads no files";
    return {};
}

int reportUsageError(std::string_view usageError)
{
    report(usageError);
    std::fputs("Try typeforge-import --help\n", stderr);
    return kUsage;
}
