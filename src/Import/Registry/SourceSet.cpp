#include "Import/Registry/SourceSet.h"

#include "Import/Registry/ImporterChoice.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <stdexcept>

namespace {

// Returns whether a file in a folder is a source of this importer. Modules and other parts of sets aren't.
bool isSourceOf(const MsgUIDescriptor& importer, const CString& name)
{
    // If the importer reads sets, the suffix of its sources is its word: .dtd, .xsd, .wsdl.
    const ImporterSource& source = importer.querySource();
    if (importer.readsSets())
        return endsWithAscii(name, CString(".") + source.word);
    // The pattern is a list as "*.JSON;*.YAML".
    for (std::string_view patterns = loadText(source.filterId + 1); !patterns.empty();) {
        const std::size_t end = std::min(patterns.find(';'), patterns.size());
        if (endsWithAscii(name, patterns.substr(0, end).substr(1)))
            return true;
        patterns.remove_prefix(std::min(end + 1, patterns.size()));
    }
    return false;
}

// Returns the files in a folder, sorted by name, because folders list them in no particular order. A link that leads
// nowhere stays, so that opening it fails with the reason. Editors have hidden ones as locks.
std::vector<CString> filesIn(const CString& folder, bool isRecursive)
{
    std::vector<CString> files;
    for (std::filesystem::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
        if (!isRecursive)
            entry.disable_recursion_pending();
        std::error_code failure;
        if (entry->is_regular_file(failure) || (failure && !entry->path().filename().string().starts_with('.')))
            files.push_back(entry->path().string());
    }
    std::ranges::sort(files);
    return files;
}

// Returns the importer that recognises a file in a folder; null if the file has the suffix of none. An unreadable file
// belongs to the importer of sets with its suffix, so that it is reported.
MsgUIDescriptor* importerInFolder(const CString& file)
{
    const auto mayRead = [&](const MsgUIDescriptor* row) {
        return !row->querySource().readsTables && isSourceOf(*row, file);
    };
    MsgUIDescriptor** row = g_amud;
    while (*row && !mayRead(*row))
        ++row;
    if (!*row)
        return nullptr;
    MsgUIDescriptor* const recognised = importerFor(file);
    if (recognised && mayRead(recognised))
        return recognised;
    return (*row)->readsSets() ? *row : nullptr;
}

// Returns the words of the importers with a source in a folder. Files that belong to the others don't count: schemas
// and messages beside a WSDL, messages beside schemas, and documents that an import has written.
std::set<CString> importersIn(const CString& folder, bool isRecursive)
{
    std::set<CString> words;
    for (const CString& file : filesIn(folder, isRecursive))
        if (const MsgUIDescriptor* const importer = importerInFolder(file))
            words.insert(importer->querySource().word);
    if (words.contains("wsdl"))
        words.erase("xsd");
    if (words.contains("wsdl") || words.contains("xsd") || words.contains("dtd"))
        words.erase("xml");
    if (words.size() > 1)
        words.erase("btd");
    return words;
}

[[noreturn]] void refuseFolder(const CString& folder, const CString& reason)
{
    throw std::runtime_error(folder + ": the folder holds " + reason);
}

// Refuses a folder without sources. Those of its subfolders may have been meant.
[[noreturn]] void refuseEmptyFolder(const CString& folder, const CString& what, bool isRecursive)
{
    using Entries = std::filesystem::directory_iterator;
    const bool hasUnread = !isRecursive && std::any_of(Entries(folder), Entries(), [](const auto& entry) {
        std::error_code failure;
        return entry.is_directory(failure);
    });
    refuseFolder(folder, "no " + what + (hasUnread ? "; its subfolders were not searched" : ""));
}

} // namespace

MsgUIDescriptor& importerForFolder(const CString& folder, bool isRecursive)
{
    const std::set<CString> words = importersIn(folder, isRecursive);
    if (words.empty())
        refuseEmptyFolder(folder, "source", isRecursive);
    CString list;
    for (const CString& word : words)
        list += (list.empty() ? "" : word == *words.rbegin() ? " and " : ", ") + word;
    if (words.size() > 1)
        refuseFolder(folder, "sources for " + list + "; name one of these importers");
    return *importerNamed(list);
}

std::vector<CString> withoutFolders(const std::vector<CString>& sources, const MsgUIDescriptor* importer,
                                    bool isRecursive)
{
    namespace fs = std::filesystem;
    std::vector<CString> files;
    for (const CString& source : sources) {
        std::error_code failure;
        if (!fs::is_directory(source, failure)) {
            files.push_back(source);
            continue;
        }
        try {
            const MsgUIDescriptor& own = importer ? *importer : importerForFolder(source, isRecursive);
            const std::size_t before = files.size();
            std::ranges::copy_if(filesIn(source, isRecursive), std::back_inserter(files),
                                 [&](const CString& file) { return isSourceOf(own, file); });
            if (files.size() == before)
                refuseEmptyFolder(source, CString("source for ") + own.querySource().word, isRecursive);
        } catch (const fs::filesystem_error& error) {
            throw std::runtime_error(source + ": " + error.code().message());
        }
    }
    return files;
}

CString nameOfSet(const std::vector<CString>& given, const std::vector<CString>& files)
{
    if (given.size() > 1 || files.size() < 2)
        return {};
    // Made absolute, so that "." and ".." have a name, too.
    CString folder = std::filesystem::absolute(given.front()).lexically_normal().string();
    while (folder.ends_with('/'))
        folder.pop_back();
    return folder.substr(folder.rfind('/') + 1);
}
