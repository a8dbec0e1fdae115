#include "Cli/Arguments.h"

#include "Formats/MsgUIDescriptor.h"
#include "Resources/StringTable.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace {

std::vector<CString> importerWords()
{
    std::vector<CString> words;
    for (MsgUIDescriptor** importer = g_amud; *importer; ++importer)
        words.emplace_back((*importer)->querySource().word);
    return words;
}

// For the completion of the shell, which so offers what there is.
void listImporters()
{
    for (MsgUIDescriptor** importer = g_amud; *importer; ++importer) {
        const ImporterSource& source = (*importer)->querySource();
        std::printf("%s\t%s\t%s\n", source.word, source.filterId ? loadText(source.filterId + 1) : "",
                    (*importer)->getName().c_str());
    }
}

std::string checkTable(const std::string& name)
{
    return trimmed(name).empty() ? "a name is missing" : "";
}

void checkLogon(const Arguments& arguments)
{
    const bool readsTables = importerNamed(arguments.importer).querySource().readsTables;
    if (!arguments.logon.user.empty() && arguments.create.address.empty() && !readsTables)
        throw CLI::ValidationError("--user", "there is nobody to log on to without --create");
}

constexpr int kUsageMistake = 2;

} // namespace

bool parseArguments(int argc, char** argv, Arguments& arguments, int& exitStatus)
{
    CLI::App app("Turns a description of business messages into type definitions for a message broker.",
                 "typeforge-import");
    app.set_version_flag("--version", "typeforge-import " TYPEFORGE_VERSION);
    app.add_option("IMPORTER", arguments.importer, "How to read the source")
        ->required()
        ->check(CLI::IsMember(importerWords()));
    app.add_option("SOURCE", arguments.source, "A file; for odbc a data source name, or a connection string")
        ->required();
    CLI::Option* basePath = app.add_option("-b,--base-path", arguments.basePath,
                                           "Folder of the broker's repository under which the types are placed");
    app.add_option("-t,--table", arguments.tables, "odbc: a table to import, repeatable; without it all tables")
        ->allow_extra_args(false)
        ->check(CLI::Validator(checkTable, ""));
    app.add_option("-o,--output", arguments.output, "Write to this file instead of standard output");
    app.add_flag("-l,--list", arguments.list, "List the types, a line each, instead of writing the message document");
    CLI::Option* type = app.add_option("--type", arguments.type, "Write the document of this one type instead");
    type->excludes("--list");
    addFullOptions(app, arguments.full);
    app.add_flag_callback(
        "--importers",
        [] {
            listImporters();
            throw CLI::Success();
        },
        "List the importers, a line each: word, tab, patterns of its files, tab, name");
    addLogonOptions(app, arguments.logon);
    addCreateOptions(app, arguments.create);
    try {
        app.parse(argc, argv);
        checkFullOptions(arguments.full, importerNamed(arguments.importer));
        checkLogon(arguments);
    } catch (const CLI::ParseError& end) {
        exitStatus = app.exit(end) == 0 ? 0 : kUsageMistake;
        return false;
    }
    arguments.hasBasePath = basePath->count() > 0;
    arguments.hasType = type->count() > 0;
    return true;
}

MsgUIDescriptor& importerNamed(const CString& word)
{
    for (MsgUIDescriptor** importer = g_amud; *importer; ++importer)
        if (word == (*importer)->querySource().word)
            return **importer;
    throw std::logic_error("no importer is called " + word);
}
