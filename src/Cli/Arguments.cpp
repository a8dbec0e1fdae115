#include "Cli/Arguments.h"

#include "Formats/BrokerMsg.h"
#include "Formats/DTDMsg.h"
#include "Formats/ODBCMsg.h"
#include "Formats/SchemaMsg.h"
#include "Formats/XMLDataMsg.h"

#include <CLI/CLI.hpp>

namespace {

constexpr Importer kImporters[] = {
    {"dtd", &DTDMessage::m_descr, false},    {"xml", &XMLDataMessage::m_descr, false},
    {"xsd", &SchemaMessage::m_descr, false}, {"btd", &BrokerMessage::m_descr, false},
    {"odbc", &ODBCMessage::m_descr, true},
};

std::vector<CString> importerWords()
{
    std::vector<CString> words;
    for (const Importer& importer : kImporters)
        words.emplace_back(importer.word);
    return words;
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
        ->allow_extra_args(false);
    app.add_option("-o,--output", arguments.output, "Write to this file instead of standard output");
    app.add_flag("-l,--list", arguments.list, "List the types, a line each, instead of writing the message document");
    CLI::Option* type = app.add_option("--type", arguments.type, "Write the document of this one type instead");
    type->excludes("--list");
    addCreateOptions(app, arguments.create);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        exitStatus = app.exit(end) == 0 ? 0 : kUsageMistake;
        return false;
    }
    arguments.hasBasePath = basePath->count() > 0;
    arguments.hasType = type->count() > 0;
    return true;
}

const Importer& importerNamed(const CString& word)
{
    for (const Importer& importer : kImporters)
        if (word == importer.word)
            return importer;
    throw std::logic_error("no importer is called " + word);
}
