#include "Cli/Diff.h"

#include "Base/Json.h"
#include "Cli/Diagnostics.h"
#include "Cli/Output.h"
#include "Cli/ReportFile.h"
#include "Cli/TypeListing.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Btd/BrokerMsg.h"
#include "Import/GenerationTime.h"
#include "Types/TypeChanges.h"
#include "Types/TypeStructure.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

// A document with the same bytes, apart from its time of generation, has the same types. It is compared as text without
// being imported, which takes half the time for a schema of 50,000 fields. Any other document is imported as a type
// document, and Types/TypeChanges compares the two sets of types.
namespace {

// The exit status of diff (POSIX): 0 without differences, 1 with differences, more than 1 for an error.
constexpr int kSame = 0, kDifferent = 1, kFailure = 2;

Reader readerOf(const DiffOptions& options)
{
    return options.compatible == "readers"   ? Reader::readers
           : options.compatible == "writers" ? Reader::writers
                                             : Reader::both;
}

// Returns the last word of an id: "added", "removed" or "changed". Each id is "SUBJECT-SORT".
std::string_view sortOf(TypeChange::Id id)
{
    const std::string_view word = idOf(id);
    return word.substr(word.find('-') + 1);
}

// Returns the part with its type, "TYPE.PART", or the type alone.
CString nameOf(const TypeChange& change)
{
    return change.part.empty() ? change.type : change.type + "." + change.part;
}

// The differences between two sets of types, with the verdict on them. Changes are accepted by their ids. The verdict
// is about the others.
class Differences
{
public:
    explicit Differences(const DiffOptions& options) : options(options), reader(readerOf(options)) {}

    // If all types have moved, that is one change. They are then compared by their names in the new folder; otherwise
    // each of them would count as removed and added.
    void compare(const TypeStructure& before, const TypeStructure& after)
    {
        const TypeFolders folders = movedFolders(before, after);
        if (!folders.areEqual() && !options.ignoreFolders) {
            const CString part = partOfFolder(before, after, folders);
            changes.push_back({TypeChange::folderChanged, part, {}, {}, folders.before, folders.after});
        }
        const std::vector<TypeChange> found = typeChanges(before, after, folders);
        changes.insert(changes.end(), found.begin(), found.end());
    }

    // Returns whether all changes are accepted. Decides the exit status.
    bool areSame() const
    {
        return std::ranges::all_of(changes, [this](const auto& c) { return isAllowed(c); });
    }

    // Returns false if a change that is not accepted breaks the programs that count.
    bool areCompatible() const
    {
        return std::ranges::none_of(changes, [this](const auto& c) { return !isAllowed(c) && breaks(c.id, reader); });
    }

    // Writes a line for each change, accepted ones included, and the verdict. Writes nothing without changes, as diff
    // does.
    void writeText(Output& output) const
    {
        for (const TypeChange& change : changes)
            output.write(lineOf(change));
        if (!changes.empty())
            output.write(verdict() + "\n");
    }

    // Writes the object that docs/diff.schema.json describes.
    void writeJson(Output& output) const
    {
        // Written before each change, so that none follows the last one.
        const char* separator = "\n  ";
        output.write(CString("{\"version\":1,\"same\":") + (changes.empty() ? "true" : "false") +
                     ",\"compatible\":" + (areCompatible() ? "true" : "false") +
                     ",\"for\":" + jsonText(options.compatible) + ",\"changes\":[");
        for (const TypeChange& change : changes) {
            output.write(separator + jsonOf(change));
            separator = ",\n  ";
        }
        output.write("]}\n");
    }

private:
    // Returns whether a folder is named after the main element. In a set with folders by namespace it is not.
    static bool isOfMainElement(const TypeStructure& types, const CString& folder)
    {
        return types.find(folder + CString(shortName(folder.substr(0, folder.size() - 1)))) != TypeStructure::kNone;
    }

    // Returns which parts of the folder differ.
    static CString partOfFolder(const TypeStructure& before, const TypeStructure& after, const TypeFolders& folders)
    {
        if (!isOfMainElement(before, folders.before) && !isOfMainElement(after, folders.after))
            return "base path";
        const auto parentOf = [](const CString& folder) {
            return folder.substr(0, folder.rfind('\\', folder.size() - 2) + 1);
        };
        const CString pathBefore = parentOf(folders.before), pathAfter = parentOf(folders.after);
        if (pathBefore == pathAfter)
            return "main element";
        return folders.before.substr(pathBefore.size()) == folders.after.substr(pathAfter.size())
                   ? "base path"
                   : "base path and main element";
    }

    bool isAllowed(const TypeChange& change) const
    {
        return std::ranges::find(options.allowed, std::string_view(idOf(change.id))) != options.allowed.end();
    }

    // Returns the line of a change: what happened, to which part, from what to what, and the id for --allow.
    CString lineOf(const TypeChange& change) const
    {
        const std::string_view sort = sortOf(change.id);
        CString line = CString(sort) + " " + change.what;
        if (change.id == TypeChange::folderChanged)
            line += ": " + change.from + " to " + change.to;
        else if (sort == "changed")
            line += " of " + nameOf(change) + ": " + change.from + " to " + change.to;
        else if (const CString& content = change.from + change.to; content.empty()) // one of them is always empty
            line += " " + nameOf(change);
        else
            line += " " + nameOf(change) + ": " + content;
        return shownText(line) + " [" + idOf(change.id) + (isAllowed(change) ? ", allowed" : "") + "]\n";
    }

    // Returns a change as an object. Members without a value are left out, but a place always has both of its members.
    CString jsonOf(const TypeChange& change) const
    {
        const auto member = [](const char* name, const CString& value) {
            return value.empty() ? CString() : CString(",\"") + name + "\":" + jsonText(value);
        };
        const CString part = change.part.empty() ? "null" : jsonText(change.part);
        const CString type = change.type.empty() ? "null" : jsonText(change.type);
        return CString("{\"id\":\"") + idOf(change.id) + "\",\"change\":\"" + CString(sortOf(change.id)) + "\"" +
               member("what", change.what) + member("name", nameOf(change)) + ",\"place\":{\"type\":" + type +
               ",\"part\":" + part + "}" + member("from", change.from) + member("to", change.to) + ",\"breaks\":[" +
               brokenSides(change.id) + "],\"allowed\":" + (isAllowed(change) ? "true" : "false") + "}";
    }

    // Returns the sides that a change breaks, whichever side the options are about.
    static CString brokenSides(TypeChange::Id id)
    {
        const bool readers = breaks(id, Reader::readers), writers = breaks(id, Reader::writers);
        return CString(readers ? "\"readers\"" : "") + (readers && writers ? "," : "") + (writers ? "\"writers\"" : "");
    }

    // Returns the verdict in words. Accepted changes break nothing, but they also decide whether there are only
    // additions.
    CString verdict() const
    {
        if (!areCompatible())
            return "not compatible: it breaks " + (reader == Reader::both ? "readers or writers" : options.compatible);
        const auto isAddition = [](const TypeChange& change) { return sortOf(change.id) == "added"; };
        if (std::ranges::all_of(changes, isAddition))
            return "compatible: only additions";
        return "compatible: it breaks no " + (reader == Reader::both ? "readers and no writers" : options.compatible);
    }

    const DiffOptions& options;
    const Reader reader;
    std::vector<TypeChange> changes;
};

// Returns whether a file is the document that `message` writes, at whatever time. Such a document has the same types,
// so it need not be imported. Reads the file piece by piece while the document is written, so neither is whole in
// memory. Only a regular file is compared, because a pipe could not be read again.
bool isDocumentOf(MsgBase& message, const CString& fileName)
{
    std::error_code failure;
    if (!std::filesystem::is_regular_file(fileName, failure))
        return false;
    // Thrown through writeXML(), which has no other way to end early.
    struct Different
    {};
    std::ifstream file(fileName, std::ios::binary);
    CString earlier;
    try {
        message.writeXML([&, isStart = true](std::string_view piece) mutable {
            earlier.resize(piece.size());
            file.read(earlier.data(), static_cast<std::streamsize>(piece.size()));
            earlier.resize(static_cast<std::size_t>(file.gcount()));
            if (std::exchange(isStart, false) && earlier.size() > kBeforeTime.size()) // takes over the time
                earlier.replace(kBeforeTime.size(), kTimeLength, piece, kBeforeTime.size(), kTimeLength);
            if (earlier != piece)
                throw Different(); // the rest need not be written
        });
    } catch (const Different&) {
        return false;
    }
    return file.peek() == std::ifstream::traits_type::eof();
}

// Imports the earlier document and compares it. Returns false on failure, which has been reported. Twins stay separate,
// so that two fields of one name are compared with the two fields of the source. XML without types could be any
// document, so it is accepted only if an import without types would write it.
bool compare(MsgBase& message, const CString& document, const DiffOptions& options, const ReportOptions& report,
             Diagnostics& diagnostics, Differences& differences)
{
    BrokerMessage earlier;
    earlier.keepTwins();
    diagnostics.receiveFrom(earlier);
    earlier.parseFile(document, earlier.getBasePath());
    if (!diagnostics.hasErrors() && !holdsTypes(earlier) && !options.isRepository() && !isDocumentOf(earlier, document))
        diagnostics.add({document, "it is not a document of types"});
    else
        reportLosses(earlier.queryReport(), report, diagnostics, document);
    if (diagnostics.hasErrors())
        return false;
    differences.compare(TypeStructure(earlier), TypeStructure(message));
    return true;
}

} // namespace

CLI::Option* addDiffOptions(CLI::App& app, DiffOptions& options)
{
    CLI::Option* const diff =
        app.add_option("--diff", options.document, "Compare with this document, or broker:SERVER[:PORT]")
            ->type_name("FILE")
            ->check([](const CString& document) {
                return document.starts_with(kBroker) ? addressError(document.substr(kBroker.size())) : "";
            });
    app.add_option("--compatible", options.compatible, "Fail if changes break these (default: readers)")
        ->type_name("readers|writers|both")
        ->check(CLI::IsMember({"readers", "writers", "both"}))
        ->needs(diff);
    app.add_option("--allow", options.allowed, "Accept this change, repeatable (field-added ...)")
        ->type_name("ID")
        ->allow_extra_args(false)
        ->check([](const CString& id) {
            return changeNamed(id) == TypeChange::idCount ? "no change is called " + id : CString();
        })
        ->needs(diff);
    app.add_flag("--ignore-folders", options.ignoreFolders, "Accept another base path or main element")->needs(diff);
    return diff;
}

int diffTypes(MsgBase& message, const DiffOptions& options, const ReportOptions& report, Output& output,
              Diagnostics& diagnostics)
{
    const CString document = options.document == "-" ? kStandardInput : options.document;
    Differences differences(options);
    const bool isEqual = !options.isRepository() && isDocumentOf(message, document);
    if (!isEqual && !compare(message, document, options, report, diagnostics, differences))
        return kFailure;
    options.asJson ? differences.writeJson(output) : differences.writeText(output);
    if (!output.finish())
        return kFailure;
    return differences.areSame() ? kSame : kDifferent;
}
