#include "Cli/FullReading.h"

#include "Cli/Diagnostics.h"
#include "Import/Full/FullMessage.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <span>
#include <system_error>

namespace {

// Parses "URI=NAME" arguments. NAME may be nested folders; backslashes around it are removed. The last "=" separates
// the two, because a URI may contain one. Two folders for one namespace are refused.
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
        const auto [known, isNew] = options.folders.emplace(text.substr(0, end), folder);
        if (!isNew && known->second != folder)
            throw CLI::ValidationError("--folder", "two folders for the namespace " + known->first);
    }
}

// Parses "NAME=VALUE" arguments. The value may be empty, as in <!ENTITY % NAME "">. Two values for one name are
// refused, because only the first declaration of an entity is binding (XML 1.0, 4.2).
void addEntities(const std::vector<CString>& given, FullOptions& options)
{
    for (const CString& text : given) {
        const std::size_t end = text.find('=');
        if (end == CString::npos || !isXmlName(text.substr(0, end)))
            throw CLI::ValidationError("--entity", "it takes NAME=VALUE");
        const auto& [name, value] = options.entities.emplace_back(text.substr(0, end), text.substr(end + 1));
        const auto known = std::ranges::find(options.entities, name, &std::pair<CString, CString>::first);
        if (known->second != value)
            throw CLI::ValidationError("--entity", "two values for the entity " + name);
    }
}

// If all sections of the source were left out, warns which entities would include some.
void suggestEntities(const std::vector<CString>& entities, Diagnostics& diagnostics)
{
    if (entities.empty())
        return;
    CString others;
    for (const CString& name : std::span(entities).subspan(1))
        others += (others.empty() ? "" : ", ") + name;
    diagnostics.warning("all its sections are left out; --entity " + entities.front() + "=INCLUDE includes one" +
                        (others.empty() ? "" : "; others depend on " + others));
}

// Warns about each --folder and --entity without effect on the source.
void warnOfUnusedOptions(const FullMessage& message, Diagnostics& diagnostics)
{
    for (const CString& uri : message.queryUnusedFolders())
        diagnostics.warning("--folder " + uri + "=... has no effect" +
                            (uri.empty() ? "" : ": no type has this namespace"));
    for (const CString& name : message.queryUnusedEntities())
        diagnostics.warning("--entity " + name + "=... has no effect: no DTD refers to it or declares it");
}

} // namespace

const char* FullOptions::optionOfFull() const
{
    return !roots.empty()      ? "--root"
           : !layout.empty()   ? "--folders"
           : !folders.empty()  ? "--folder"
           : !name.empty()     ? "--name"
           : mergesEqual       ? "--merge-equal"
           : !catalogs.empty() ? "--catalog"
                               : "";
}

// Folders belong to namespaces only if types are laid out by namespace, which is the default for several sources.
CString FullOptions::usageErrorFor(std::size_t sourceCount) const
{
    const bool isByNamespace = layout == "namespace" || (layout.empty() && sourceCount > 1);
    const CString option = mergesEqual ? "--merge-equal" : !folders.empty() ? "--folder" : "";
    return option.empty() || isByNamespace ? "" : option + " requires --folders namespace";
}

// A repeatable option takes one value each time (allow_extra_args(false)), so that the next word is a source.
void addFullOptions(CLI::App& app, FullOptions& options)
{
    CLI::Option* const full =
        app.add_flag("--full", options.isWanted,
                     "dtd, xsd: apply all rules of the language; wsdl and the importers of JSON always do");
    app.add_option("--root", options.roots, "With --full: import only NAME and what it uses; repeatable")
        ->type_name("NAME")
        ->allow_extra_args(false);
    app.add_option("--folders", options.layout, "With --full: place types by main type or namespace")
        ->type_name("main|namespace")
        ->check(CLI::IsMember({"main", "namespace"}));
    app.add_option_function<std::vector<CString>>(
           "--folder", [&options](const std::vector<CString>& given) { addFolders(given, options); },
           "With --folders namespace: place the types of this namespace in this folder; repeatable")
        ->type_name("URI=NAME")
        ->allow_extra_args(false);
    app.add_flag("--merge-equal", options.mergesEqual, "With --folders namespace: put equal types into one folder");
    app.add_option("--catalog", options.catalogs, "With --full: find documents by this XML catalogue; repeatable")
        ->type_name("FILE")
        ->allow_extra_args(false);
    app.add_option_function<std::vector<CString>>(
           "--entity", [&options](const std::vector<CString>& given) { addEntities(given, options); },
           "With dtd --full: declare this parameter entity first; repeatable")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false)
        ->needs(full);
    app.add_option("--name", options.name, "With --full: name the document (default: the main type)")
        ->type_name("NAME");
}

// An importer that has no literal reading is a FullMessage, too. Its layout stays automatic unless one is given.
MsgBase* createImporter(const FullOptions& options, const MsgUIDescriptor& importer)
{
    MsgBase* const message = options.isWanted && importer.hasFull() ? importer.createFull() : importer.create();
    auto* const full = dynamic_cast<FullMessage*>(message);
    if (!full)
        return message;
    full->setRoots(options.roots);
    full->setName(options.name);
    full->setMergesEqual(options.mergesEqual);
    if (!options.layout.empty())
        full->setLayout(options.layout == "main" ? FullMessage::Layout::byMainType : FullMessage::Layout::byNamespace);
    for (const auto& [uri, folder] : options.folders)
        full->setFolder(uri, folder);
    if (importer.readsCatalogs())
        full->setCatalogs(withEnvironmentCatalogs(options.catalogs));
    full->setEntities(options.entities);
    return message;
}

// After an error, options may be unused because the import ended early, so they are not reported.
void adviseOnFullReading(const MsgBase& message, Diagnostics& diagnostics)
{
    const auto* const full = dynamic_cast<const FullMessage*>(&message);
    if (!full)
        return;
    if (message.queryDescriptor()->readsCatalogs())
        for (const CString& error : environmentCatalogErrors())
            diagnostics.warning(error);
    suggestEntities(full->querySectionEntities(), diagnostics);
    if (!diagnostics.hasErrors())
        warnOfUnusedOptions(*full, diagnostics);
}

void suggestFullReading(const MsgUIDescriptor& importer, const CString& source, Diagnostics& diagnostics)
{
    const std::unique_ptr<const FullMessage> full(importer.createFull());
    std::error_code failure;
    if (full && std::filesystem::is_directory(source, failure))
        diagnostics.warning("use --full: it reads the files of a folder");
    else if (const CString unsupported = full ? full->unsupportedByLiteral(source) : ""; !unsupported.empty())
        diagnostics.warning("use --full: the source uses " + unsupported);
}
