#include "Import/Schema/Literal/SchemaCache.h"

void SchemaCache::add(const CString& fileName, std::uint32_t file, const Locations& locations)
{
    if (const auto id = identify(fileName))
        met.insert(*id);
    for (auto location = locations.rbegin(); location != locations.rend(); ++location)
        waiting.push_back({folders.size(), {file, location->line}, location->text});
    folders.push_back(folderOf(fileName));
}

std::optional<SchemaCache::Document> SchemaCache::next()
{
    while (!waiting.empty()) {
        const Reference reference = waiting.back();
        waiting.pop_back();
        auto file = finder.find(folders[reference.folder], localPath(reference.location));
        if (!file)
            return Document{{}, reference.place, reference.location};
        if (met.insert(file->id).second)
            return Document{std::move(file->name), reference.place, reference.location};
    }
    return std::nullopt;
}
