#include "Formats/SchemaCache.h"

void SchemaCache::add(const CString& fileName, const std::vector<std::string_view>& locations)
{
    if (const auto file = identify(fileName))
        met.insert(*file);
    for (auto location = locations.rbegin(); location != locations.rend(); ++location)
        waiting.push_back({folders.size(), *location});
    folders.push_back(folderOf(fileName));
}

std::optional<CString> SchemaCache::next()
{
    while (!waiting.empty()) {
        const Reference reference = waiting.back();
        waiting.pop_back();
        auto file = finder.find(folders[reference.folder], localPath(reference.location));
        if (file && met.insert(file->id).second)
            return std::move(file->name);
    }
    return std::nullopt;
}
