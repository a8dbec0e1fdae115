#include "Import/Registry/SourceSet.h"

#include "Import/MsgUIDescriptor.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <filesystem>
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

// Returns `importer` if a file is a source of it. If that is null, returns the importer of sets that reads the file;
// null if there is none.
const MsgUIDescriptor* importerOf(const CString& name, const MsgUIDescriptor* importer)
{
    if (importer)
        return isSourceOf(*importer, name) ? importer : nullptr;
    for (MsgUIDescriptor** row = g_amud; *row; ++row)
        if ((*row)->readsSets() && isSourceOf(**row, name))
            return *row;
    return nullptr;
}

std::vector<CString> filesIn(const CString& folder, const MsgUIDescriptor* importer, bool isRecursive)
{
    std::vector<CString> files;
    for (std::filesystem::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
        if (!isRecursive)
            entry.disable_recursion_pending();
        std::error_code failure;
        const CString name = entry->path().filename().string();
        const MsgUIDescriptor* const own = importerOf(name, importer);
        // A link that leads nowhere stays, so that opening it fails with the reason. Editors have hidden ones as locks.
        const bool isSource = entry->is_regular_file(failure) || (failure && !name.starts_with('.'));
        if (!own || !isSource)
            continue;
        if (!importer && own->querySource().isSet) { // a WSDL refers to the schemas beside it
            importer = own;
            files.clear();
        }
        files.push_back(entry->path().string());
    }
    // Folders list their files in no particular order, and the result depends on the order.
    std::ranges::sort(files);
    return files;
}

} // namespace

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
            const std::vector<CString> inside = filesIn(source, importer, isRecursive);
            if (inside.empty())
                throw std::runtime_error(source + ": the folder holds no source" +
                                         (importer ? CString(" for ") + importer->querySource().word : ""));
            files.insert(files.end(), inside.begin(), inside.end());
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
