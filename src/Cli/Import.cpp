#include "Cli/Import.h"

#include "Base/MessageBox.h"
#include "Broker/TypeSource.h"
#include "Cli/Diff.h"
#include "Cli/Output.h"
#include "Cli/ProgressLine.h"
#include "Cli/Sources.h"
#include "Cli/TableSource.h"
#include "Cli/TypeListing.h"
#include "Database/ConnectSettings.h"
#include "Database/ConnectString.h"
#include "Files/FileMessage.h"
#include "Files/SameFile.h"
#include "Import/GenerationTime.h"
#include "Import/MsgBase.h"
#include "Import/Registry/ImporterChoice.h"
#include "Import/Registry/SourceSet.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <stdexcept>

// The steps of the command, in the order of runImport(). Sources are expanded and pipes copied before the importer is
// chosen, because its choice reads them. Everything that makes a command line invalid is refused before the import,
// except outputs that turn out to be inputs: only the import knows the files that its sources refer to. Until all
// checks have passed nothing is written, so a refused or failed command leaves every older output as it was; only a
// report is also written after a failure.
namespace {

// Returns the folder of the broker under which the types are placed, with the final backslash that importers expect. An
// empty --base-path names the root, "\".
CString basePathOf(const Arguments& arguments, MsgBase& importer)
{
    CString path = arguments.basePath.value_or(importer.getBasePath());
    if (!path.ends_with('\\'))
        path += '\\';
    return path;
}

// Returns the first type with this short name, else that with this full name. Warns if types of several folders have
// the short name; returns null, which has been reported, if none has either. The name may be in the encoding of the
// source.
Element* findType(MsgBase& message, const CString& asked, Diagnostics& diagnostics)
{
    constexpr std::size_t shown = 5;
    const CString name = toXmlText(asked);
    const auto fullNameOf = [](const Element& type) { return type.queryPath() + type.queryName(); };
    Element* found = nullptr;
    std::set<CString> fullNames; // of the types with the short name
    message.beginEnum();
    while (Element* type = message.enumNext()) {
        const bool isShort = type->queryName() == name;
        if ((isShort && fullNames.empty()) || (!found && fullNameOf(*type) == name))
            found = type;
        if (isShort && fullNames.size() < shown)
            fullNames.insert(fullNameOf(*type));
    }
    if (!found)
        diagnostics.error("there is no type called " + asked);
    if (fullNames.size() > 1) {
        CString words;
        for (const CString& fullName : fullNames)
            words += (words.empty() ? "" : ", ") + fullName;
        diagnostics.warning("several types are called " + asked + ": " + words + "; --type took " + fullNameOf(*found));
    }
    return found;
}

// Warns if the root element isn't named after the main type, because not every type name is an XML name. Types keep
// their names; programs that look for the root element by the main type's name would miss it.
void warnOfChangedTag(const MsgBase& message, Diagnostics& diagnostics)
{
    const CString mainType = message.queryMainTypeName(), tag = message.queryFrameTag();
    if (tag != mainType && !mainType.empty())
        diagnostics.warning("the document's root element is named " + tag + ", because " + mainType +
                            " is not an element name in XML");
}

// Writes the result that the options select, and returns the exit status. Returns without finish() on an error, so that
// an older file stays. The repository is read here, because the imported types decide which of its folders are read.
int writeResult(MsgBase& message, const Arguments& arguments, Diagnostics& diagnostics)
{
    Output output(arguments.output);
    if (!arguments.always)
        output.keepUnchanged();
    if (arguments.diff.isRepository() && !keepRepository(message, arguments.diff.document, arguments.logon))
        return arguments.failedStatus();
    if (!arguments.diff.document.empty())
        return diffTypes(message, arguments.diff, arguments.report, output, diagnostics);
    if (!arguments.type.empty()) {
        Element* const type = findType(message, arguments.type, diagnostics);
        if (!type)
            return kFailed;
        writeType(*type, arguments.pretty || output.isTerminal(), output);
    } else if (arguments.list) {
        if (arguments.json)
            writeJsonList(message, output);
        else
            writeList(message, output.isTerminal(), output);
    } else if (arguments.graph) {
        writeGraph(message, output);
    } else {
        if (!arguments.always && !isTimeFixed()) // a new time of generation alone is not a change
            output.keepUnchanged(static_cast<off_t>(kBeforeTime.size()), static_cast<off_t>(kTimeLength));
        warnOfChangedTag(message, diagnostics);
        message.writeXML([&output](std::string_view piece) { output.write(piece); });
    }
    return output.finish() ? kDone : kNotWritten;
}

// Returns the kind of a source that isn't one of this importer, as the end of an error; empty if it is unknown. Most
// imports without types have a wrong file or importer. An importer of tables has no file to look at.
CString otherKindOf(const CString& file, const MsgUIDescriptor& importer)
{
    if (importer.querySource().readsTables)
        return {};
    const MsgUIDescriptor* const other = importerFor(file);
    if (other)
        return other == &importer ? "" : CString("; it looks like a source for ") + other->querySource().word;
    const std::string_view foreign = foreignAdvice(file);
    return foreign.empty() ? "" : "; " + CString(foreign);
}

// Imports the sources. Returns whether there are types to write; if not, that has been reported. `tables` is null
// unless the importer reads tables.
bool importSources(MsgBase& message, const MsgUIDescriptor& importer, const Arguments& arguments,
                   const std::vector<CString>& files, TableSource* tables, Diagnostics& diagnostics)
{
    const CString basePath = basePathOf(arguments, message);
    if (arguments.basePath && importer.querySource().namesFolders)
        diagnostics.warning("--base-path has no effect: the document names the folders of its types");
    message.setFurtherFiles({files.begin() + 1, files.end()});
    if (!arguments.report.file.empty())
        message.wantReport();
    if (arguments.allowEmpty)
        message.allowEmpty();
    // With a requested element, the error may be about that alone.
    diagnostics.receiveFrom(message, [&](const CString& file) {
        // Errors in a document that the source refers to don't make the source one of another kind.
        const bool isSource = std::ranges::find(files, file) != files.end();
        return isSource && arguments.full.roots.empty() ? otherKindOf(file, importer) : CString();
    });
    if (tables)
        tables->import(message, arguments, basePath, diagnostics);
    else
        message.parseFile(files.front(), basePath);
    diagnostics.finish();
    if (!diagnostics.hasErrors()) // after an error nothing is written, so nothing is lost
        reportLosses(message.queryReport(), arguments.report, diagnostics);
    adviseOnFullReading(message, diagnostics);
    const bool isEmpty = !holdsTypes(message);
    if (isEmpty && !diagnostics.hasErrors() && !arguments.allowEmpty)
        diagnostics.error("no types were found" + otherKindOf(files.front(), importer));
    if (!arguments.full.isWanted && (isEmpty || diagnostics.hasLiteralError()))
        suggestFullReading(importer, files.front(), diagnostics);
    return !diagnostics.hasErrors();
}

// Returns the importer common to all files; null if there is none, which has been reported. Several files are one
// source, so they must be of one kind.
MsgUIDescriptor* importerOf(const std::vector<CString>& files, Diagnostics& diagnostics)
{
    MsgUIDescriptor* const importer = importerOf(files.front(), diagnostics);
    for (std::size_t i = 1; importer && i < files.size(); ++i) {
        const MsgUIDescriptor* const other = importerOf(files[i], diagnostics);
        if (other && other != importer)
            diagnostics.add({files[i], CString("it is not a source for ") + importer->querySource().word + ", as " +
                                           shownFile(files.front()) + " is"});
        if (other != importer)
            return nullptr;
    }
    return importer;
}

// Returns the files to read. They are read twice if their content chooses the importer, or if suggestFullReading() may
// look at them after a failure.
std::vector<CString> sourceFiles(const Arguments& arguments)
{
    const MsgUIDescriptor* const importer = arguments.importer;
    if (importer && importer->querySource().readsTables)
        return arguments.sources;
    return filesOf(arguments.sources, !importer || (importer->hasFull() && !arguments.full.isWanted));
}

// Throws std::runtime_error if one of the sources `given` is a folder whose files chose an importer that reads folders
// only in full.
void requireFullForFolders(const Arguments& arguments, const std::vector<CString>& given,
                           const MsgUIDescriptor& importer)
{
    if (arguments.importer || arguments.full.isWanted || !importer.hasFull())
        return;
    std::error_code failure;
    for (const CString& source : given)
        if (std::filesystem::is_directory(source, failure))
            throw std::runtime_error(source + ": use --full: it reads the files of a folder");
}

// Replaces folders by their files. A literal reading keeps the folder as its source: its error then names it, and
// suggestFullReading() explains it.
void expandFolders(Arguments& arguments)
{
    const MsgUIDescriptor* const importer = arguments.importer;
    if (importer && (importer->querySource().readsTables || (importer->hasFull() && !arguments.full.isWanted)))
        return;
    arguments.sources = withoutFolders(arguments.sources, importer, arguments.isRecursive);
}

// Returns the origin to record. Several files are recorded under the first. A repository compares it with the origin of
// a type that exists. The origin of a data source contains no user and password.
TypeSource sourceOf(const MsgUIDescriptor& importer, const CString& source)
{
    return importer.querySource().readsTables ? TypeSource{toXmlText(identityOf(source))} : fileSource(source);
}

// Creates the types and returns the exit status. A failed logon as the current user after --source-user is most likely
// a mix-up of the two users.
int createOnBroker(MsgBase& message, const MsgUIDescriptor& importer, const CString& source, const Arguments& arguments)
{
    const int status =
        createTypes(message, sourceOf(importer, source), arguments.create, arguments.logon, arguments.verbosity);
    if (status == kFailed && arguments.logon.user.empty() && !arguments.sourceLogon.user.empty())
        report("--source-user is the user of the database; --user logs on to the broker");
    return status;
}

// Returns the files that the command writes. "-" is not one of them: it means standard output for --output, but
// standard error for --report.
std::vector<CString> outputsOf(const Arguments& arguments)
{
    std::vector<CString> outputs;
    for (const CString& file : {arguments.output, arguments.report.file, arguments.dependencies.file})
        if (!file.empty() && file != "-")
            outputs.push_back(file);
    return outputs;
}

// Returns the file of a data source whose driver reads a file; empty if the driver connects to a server. An output of
// that name would replace the database.
CString databaseFile(const CString& source)
{
    const CString connection = source.find('=') == CString::npos ? "DSN=" + source : source;
    return hasDriver(connection, {"sqlite"}) ? settingOf(connection, "Database") : CString();
}

// Returns the first output that is also an input of the command line, or that is written twice; empty if there is none.
// `files` are the sources, or the data source of an importer of tables. Names are compared as files, through links and
// redirections, also if nothing exists there yet. Outputs that are both named /dev/stdout don't conflict: they follow
// each other in one open file.
CString conflictingOutput(const Arguments& arguments, const MsgUIDescriptor& importer,
                          const std::vector<CString>& files)
{
    std::vector<CString> others = files;
    if (importer.querySource().readsTables)
        others = {databaseFile(files.front())};
    others.push_back(arguments.diff.document == "-" ? "" : arguments.diff.document);
    others.push_back(arguments.logon.passwordFile);
    others.push_back(arguments.sourceLogon.passwordFile);
    others.insert(others.end(), arguments.full.catalogs.begin(), arguments.full.catalogs.end());
    others.insert(others.end(), arguments.argumentFiles.begin(), arguments.argumentFiles.end());
    if (arguments.output.empty() || arguments.output == "-")
        others.push_back(kStandardOutput); // which may be redirected to a file
    if (arguments.report.file == "-")
        others.push_back("/dev/stderr");
    for (const CString& written : outputsOf(arguments)) {
        for (const CString& other : others)
            if (!other.empty() && (written != kStandardOutput || other != written) && isSameFile(written, other))
                return written;
        others.push_back(written);
    }
    return {};
}

// Returns the first output that an import has read, because its sources refer to it; empty if there is none.
CString outputThatWasRead(const Arguments& arguments, const MsgUIDescriptor& importer, const SourceReport& report)
{
    if (importer.querySource().readsTables)
        return {}; // the report names the data source, which is not a file
    for (const CString& written : outputsOf(arguments))
        for (std::uint32_t file = 0; file < report.fileCount(); ++file)
            if (const CString& name = report.fileNameOf(file); !name.empty() && isSameFile(written, name))
                return written;
    return {};
}

// Returns why the command line is invalid for these files and this importer; empty if it is valid.
CString usageErrorFor(const Arguments& arguments, const MsgUIDescriptor& importer, const std::vector<CString>& files)
{
    if (const CString usageError = usageErrorFor(arguments, importer); !usageError.empty())
        return usageError;
    if (const CString usageError = arguments.full.usageErrorFor(files.size()); !usageError.empty())
        return usageError;
    const CString file = conflictingOutput(arguments, importer, files);
    return file.empty() ? file : file + ": it would be read and written, or written twice";
}

} // namespace

// Takes a copy of the arguments, because folders among the sources are replaced by their files.
int runImport(Arguments arguments)
{
    const ProgressLine progressLine;
    setMessageBoxHandler([isQuiet = arguments.verbosity == Verbosity::quiet](const CString& text, const CString&) {
        if (!isQuiet) // the only message here: the settings can't be read, which doesn't end an import
            report("warning: " + text);
    });
    if (const CString usageError = epochError(); !usageError.empty())
        return reportUsageError(usageError);
    const std::vector<CString> given = arguments.sources;
    expandFolders(arguments);
    const std::vector<CString> files = sourceFiles(arguments);
    Diagnostics diagnostics(shownSource(files.front()), arguments.verbosity);
    const MsgUIDescriptor* const importer = arguments.importer ? arguments.importer : importerOf(files, diagnostics);
    if (!importer)
        return arguments.failedStatus();
    requireFullForFolders(arguments, given, *importer);
    if (arguments.full.name.empty() && importer->readsFolders())
        arguments.full.name = nameOfSet(given, arguments.sources);
    if (const CString usageError = usageErrorFor(arguments, *importer, files); !usageError.empty())
        return reportUsageError(usageError);
    // Before the importer, which takes its connection from the main window at its construction.
    std::optional<TableSource> tables;
    if (importer->querySource().readsTables)
        tables.emplace();
    const std::unique_ptr<MsgBase> message(createImporter(arguments.full, *importer));
    const bool hasTypes =
        importSources(*message, *importer, arguments, files, tables ? &*tables : nullptr, diagnostics);
    if (const CString file = outputThatWasRead(arguments, *importer, message->queryReport()); !file.empty())
        return reportUsageError(file + ": the source refers to it, so it can't be an output");
    const bool isReported = writeReport(*message, arguments.report);
    if (!hasTypes)
        return arguments.failedStatus();
    // With --diff every failure is 2.
    if (!isReported)
        return arguments.diff.document.empty() ? kNotWritten : kUsage;
    // The types of a folder's files are recorded under the folder.
    if (!arguments.create.address.empty())
        return createOnBroker(
            *message, *importer,
            arguments.sources.size() > 1 && given != arguments.sources ? given.front() : files.front(), arguments);
    // Before the document: a new document with an old rule would be up to date for a build, whatever has changed.
    const DependencyOptions& dependencies = arguments.dependencies;
    if (!dependencies.file.empty() &&
        !writeDependencies(message->queryReport(), files.front(), arguments.output, dependencies))
        return kNotWritten;
    return writeResult(*message, arguments, diagnostics);
}
