#include "Cli/FullReading.h"

#include "Cli/Diagnostics.h"
#include "Import/Full/FullMessage.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

// A folder may lie in another one; it needs no backslashes around it.
void addFolders(const std::vector<CString>& given, FullOptions& options)
{
    for (const CString& text : given) {
        const std::size_t end = text.rfind('=');
        if (end == CString::npos)
            throw CLI::ValidationError("--folder", "it takes URI=NAME");
        CString folder = text.substr(end + 1);
        folder.erase(0, folder.find_first_not_of('\\'));
        while (folder.ends_with('\\'))
            folder.pop_back();
        options.folders[text.substr(0, end)] = folder;
    }
}

} // namespace

const char* FullOptions::optionOfFull() const
{
    return !roots.empty()     ? "--root"
           : !layout.empty()  ? "--folders"
           : !folders.empty() ? "--folder"
           : !name.empty()    ? "--name"
                              : "";
}

void addFullOptions(CLI::App& app, FullOptions& options)
{
    app.add_flag("--full", options.isWanted, "dtd, xsd: Read by all rules of the language");
    app.add_option("--root", options.roots, "With --full: import only what NAME reaches (repeats)")
        ->type_name("NAME")
        ->allow_extra_args(false);
    app.add_option("--folders", options.layout, "With --full: place types by main type or namespace")
        ->type_name("main|namespace")
        ->check(CLI::IsMember({"main", "namespace"}));
    app.add_option_function<std::vector<CString>>(
           "--folder", [&options](const std::vector<CString>& given) { addFolders(given, options); },
           "With --full: place this namespace there (repeats)")
        ->type_name("URI=NAME")
        ->allow_extra_args(false);
    app.add_option("--name", options.name, "With --full: name the whole (default: the main type)")->type_name("NAME");
}

MsgBase* createImporter(const FullOptions& options, const MsgUIDescriptor& importer)
{
    MsgBase* const message = options.isWanted ? importer.createFull() : importer.create();
    auto* const full = dynamic_cast<FullMessage*>(message);
    if (!full)
        return message;
    full->setRoots(options.roots);
    full->setName(options.name);
    if (!options.layout.empty())
        full->setLayout(options.layout == "main" ? FullMessage::Layout::byMainType : FullMessage::Layout::byNamespace);
    for (const auto& [uri, folder] : options.folders)
        full->setFolder(uri, folder);
    return message;
}

bool readsInFull(const MsgBase& importer)
{
    return dynamic_cast<const FullMessage*>(&importer) != nullptr;
}

void nameWayOut(const MsgUIDescriptor& importer, const CString& source, Diagnostics& diagnostics)
{
    const std::unique_ptr<const FullMessage> full(importer.createFull());
    if (const CString uses = full ? full->queryUses(source) : ""; !uses.empty())
        diagnostics.warning("read it with --full: it uses " + uses);
}
