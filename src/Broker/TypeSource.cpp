#include "Broker/TypeSource.h"

#include "Files/FileMessage.h"

#include <algorithm>
#include <filesystem>
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

CString shortName(const CString& source, const std::vector<CString>& others)
{
    if (source.empty())
        return "unknown source";
    const CString name = withoutFolder(source);
    const bool isClear = std::ranges::all_of(
        others, [&](const CString& other) { return other == source || withoutFolder(other) != name; });
    return isClear && !name.empty() ? name : source;
}
