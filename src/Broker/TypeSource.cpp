#include "Broker/TypeSource.h"

#include "Files/FileMessage.h"

#include <filesystem>
#include <map>
#include <set>
#include <system_error>

namespace {

// A data source's identity never begins with a slash.
CString withoutFolder(const CString& source)
{
    return source.starts_with('/') ? source.substr(source.rfind('/') + 1) : source;
}

} // namespace

TypeSource fileSource(const CString& file)
{
    namespace fs = std::filesystem;
    if (file == kStandardInput)
        return {"standard input", false};
    std::error_code failure;
    // Normalised but not resolved: to the user, a link is the same source even if it leads elsewhere next time.
    const fs::path full = fs::absolute(file, failure).lexically_normal();
    const fs::file_status status = fs::status(full, failure);
    // A file name can hold any bytes, but the shipped client separates texts by characters that XML can't hold.
    return {toXmlText(full.string()), fs::is_regular_file(status) || fs::is_directory(status)};
}

std::vector<CString> shortNames(const std::vector<CString>& sources)
{
    std::map<CString, int> uses; // of a name without its folder, by different sources
    for (const CString& source : std::set(sources.begin(), sources.end()))
        ++uses[withoutFolder(source)];
    std::vector<CString> names;
    for (const CString& source : sources) {
        const CString name = withoutFolder(source);
        names.push_back(source.empty() ? "unknown source" : !name.empty() && uses[name] == 1 ? name : source);
    }
    return names;
}
