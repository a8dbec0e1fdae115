#include "Import/Registry/SourceSet.h"

#include "Import/MsgUIDescriptor.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace {

// Returns the importer of sets whose word is the suffix of this file name; null if there is none. A module is no
// source.
const MsgUIDescriptor* importerBySuffix(const CString& name)
{
    const std::size_t dot = name.rfind('.');
    for (MsgUIDescriptor** row = g_amud; *row && dot != CString::npos; ++row)
        if ((*row)->readsSets() && isSameAscii(std::string_view(name).substr(dot + 1), (*row)->querySource().word))
            return *row;
    return nullptr;
}

template <class Iterator>
std::vector<CString> filesIn(const CString& folder, const MsgUIDescriptor* importer)
{
    std::vector<CString> files;
    for (const std::filesystem::directory_entry& entry : Iterator(folder)) {
        std::error_code failure;
        const MsgUIDescriptor* const own = importerBySuffix(entry.path().filename().string());
        if (!own || (importer && own != importer) || !entry.is_regular_file(failure))
            continue;
        if (!importer && own->querySource().isSet) { // a WSDL refers to the schemas beside it
            importer = own;
            files.clear();
        }
        files.push_back(entry.path().string());
    }
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
            const std::vector<CString> inside = isRecursive
                                                    ? filesIn<fs::recursive_directory_iterator>(source, importer)
                                                    : filesIn<fs::directory_iterator>(source, importer);
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
