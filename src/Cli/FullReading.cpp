#include "Cli/FullReading.h"

#include "Cli/Report.h"
#include "Formats/FullMessage.h"
#include "Platform/Files/AtomicFile.h"
#include "Utils/FileMessage.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

void addFullOptions(CLI::App& app, FullOptions& options)
{
    CLI::Option* const full = app.add_flag("--full", options.isWanted,
                                           "dtd, xsd: Read the source by all the rules of its language: entities and "
                                           "modules, namespaces and documents, derived types");
    app.add_option("--root", options.root, "With --full: the main type; only what it reaches is imported")
        ->type_name("NAME")
        ->needs(full);
    app.add_option("--report", options.report,
                   "With --full: write what was not carried over to this file, - for standard error")
        ->type_name("FILE")
        ->needs(full);
}

void checkFullOptions(const FullOptions& options, const MsgUIDescriptor& importer)
{
    if (options.isWanted && !importer.hasFull())
        throw CLI::ValidationError("--full", CString(importer.querySource().word) + " has no full reading");
}

FullMessage* createFull(const FullOptions& options, const MsgUIDescriptor& importer)
{
    FullMessage* message = importer.createFull();
    message->setRoot(options.root);
    return message;
}

bool writeReport(const FullMessage& message, const FullOptions& options)
{
    if (options.report.empty())
        return true;
    if (options.report == "-") {
        message.queryReport().write([](std::string_view piece) { std::fwrite(piece.data(), 1, piece.size(), stderr); });
        return true;
    }
    AtomicFile file(options.report, AtomicFile::Special::written);
    message.queryReport().write([&file](std::string_view piece) { file.write(piece); });
    const FileCause cause = file.commit();
    if (cause != FileCause::none)
        report(cantOpen(options.report, cause));
    return cause == FileCause::none;
}

void nameWayOut(const MsgUIDescriptor& importer, const CString& source)
{
    const std::unique_ptr<const FullMessage> full(importer.createFull());
    if (const CString uses = full ? full->queryUses(source) : ""; !uses.empty())
        report("read it with --full: it uses " + uses);
}
