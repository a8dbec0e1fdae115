#include "Cli/Diff.h"

#include "Base/Json.h"
#include "Cli/Diagnostics.h"
#include "Cli/Output.h"
#include "Cli/ReportFile.h"
#include "Cli/TypeListing.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Files/KeptPipe.h"
#include "Import/Btd/BrokerMsg.h"
#include "Types/TextMatch.h"
#include "Types/TypeChanges.h"
#include "Types/TypeStructure.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

// Types whose texts are in the document word for word have not changed (Types/TextMatch). Only the rest of the document
// is imported as a type document, and Types/TypeChanges compares the two sets of types. Nearly all types of a large
// document are the same, so this takes half the time of importing all of it.
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
        addMove(folders, isOfMainElement(before, folders.before, folders.before) ||
                             isOfMainElement(after, folders.after, folders.after));
        const std::vector<TypeChange> found = typeChanges(before, after, folders);
        changes.insert(changes.end(), found.begin(), found.end());
    }

    // Compares types of which those in `areEqual`, by their numbers in `after`, are known to be equal.
    void compareRest(const TypeStructure& before, const TypeStructure& after, const std::vector<bool>& areEqual)
    {
        changes = typeChanges(before, after, {}, areEqual);
    }

    // Compares types that differ by their folders only, of which nothing but `after` is needed.
    void compareMoved(const TypeStructure& after, const TypeFolders& folders)
    {
        addMove(folders, isOfMainElement(after, folders.before, folders.after) ||
                             isOfMainElement(after, folders.after, folders.after));
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
    // Returns whether a folder is named after the main element, which is among the types in the folder `in`. In a set
    // with folders by namespace it is not.
    static bool isOfMainElement(const TypeStructure& types, const CString& folder, const CString& in)
    {
        return types.find(in + CString(shortName(folder.substr(0, folder.size() - 1)))) != TypeStructure::kNone;
    }

    // Adds the change of the folders, if there is one.
    void addMove(const TypeFolders& folders, bool areOfMainElement)
    {
        if (!folders.areEqual() && !options.ignoreFolders)
            changes.push_back({TypeChange::folderChanged,
                               areOfMainElement ? partOfFolder(folders) : "base path",
                               {},
                               {},
                               folders.before,
                               folders.after});
    }

    // Returns which parts of the folder differ, of those that are named after the main element.
    static CString partOfFolder(const TypeFolders& folders)
    {
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

// Reads a regular file. Returns false for any other, because a pipe could not be read again, and if it can't be read.
bool readRegular(const CString& fileName, CString& text)
{
    std::error_code failure;
    return std::filesystem::is_regular_file(fileName, failure) && readFile(fileName, text) == FileCause::none;
}

// Compares the texts of the types with the document, and imports only what differs. Returns false without a result if
// the whole document must be imported, which then reports errors and losses at their places.
bool compareTexts(MsgBase& message, const CString& document, Differences& differences)
{
    std::optional<TextMatch> match;
    if (CString text; !readRegular(document, text) || !(match = matchTexts(message, text)))
        return false;
    if (match->folders.areEqual() && match->areAllEqual())
        return true;
    const TypeStructure after(message);
    if (!match->folders.areEqual()) {
        differences.compareMoved(after, match->folders);
        return true;
    }
    if (!after.hasUniqueNames())
        return false;
    BrokerMessage earlier;
    earlier.keepTwins();
    bool isFaultless = true;
    earlier.setErrorHandler([&](const CString&, const SourceFault&) { isFaultless = false; });
    const CString rest = "the rest of " + document;
    if (!match->rest.empty() && (!keepText(rest, match->rest) || !earlier.parseFile(rest, earlier.getBasePath())))
        return false;
    if (!isFaultless || earlier.queryReport().queryTotal(SourceReport::loss) > 0)
        return false;
    differences.compareRest(TypeStructure(earlier), after, match->isEqual);
    return true;
}

// Imports the earlier document and compares it. Returns false on failure, which has been reported. Twins stay separate,
// so that two fields of one name are compared with the two fields of the source. XML without types could be any
// document, so it is accepted only in the form that this program writes.
bool compare(MsgBase& message, const CString& document, const DiffOptions& options, const ReportOptions& report,
             Diagnostics& diagnostics, Differences& differences)
{
    BrokerMessage earlier;
    earlier.keepTwins();
    diagnostics.receiveFrom(earlier);
    earlier.parseFile(document, earlier.getBasePath());
    CString text;
    if (!diagnostics.hasErrors() && !holdsTypes(earlier) && !options.isRepository() &&
        !(readRegular(document, text) && isOfThisProgram(text)))
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
    const bool isCompared = !options.isRepository() && compareTexts(message, document, differences);
    if (!isCompared && !compare(message, document, options, report, diagnostics, differences))
        return kFailure;
    options.asJson ? differences.writeJson(output) : differences.writeText(output);
    if (!output.finish())
        return kFailure;
    return differences.areSame() ? kSame : kDifferent;
}
