#include "Cli/FullReading.h"

#include "Cli/Diagnostics.h"
#include "Import/Full/FullMessage.h"

#include <CLI/CLI.hpp>

#include <memory>

void addFullOptions(CLI::App& app, FullOptions& options)
{
    CLI::Option* const full = app.add_flag("--full", options.isWanted, "dtd, xsd: Read by all rules of the language");
    app.add_option("--root", options.root, "With --full: import NAME and what it reaches")
        ->type_name("NAME")
        ->needs(full);
}

MsgBase* createImporter(const FullOptions& options, const MsgUIDescriptor& importer)
{
    if (!options.isWanted)
        return importer.create();
    FullMessage* message = importer.createFull();
    message->setRoot(options.root);
    return message;
}

void nameWayOut(const MsgUIDescriptor& importer, const CString& source, Diagnostics& diagnostics)
{
    const std::unique_ptr<const FullMessage> full(importer.createFull());
    if (const CString uses = full ? full->queryUses(source) : ""; !uses.empty())
        diagnostics.warning("read it with --full: it uses " + uses);
}
