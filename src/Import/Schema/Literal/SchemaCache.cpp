#include "Import/Schema/Literal/SchemaCache.h"

void SchemaCache::add(const CString& fileName, const CString& shownName, const Locations& locations)
{
    if (const auto id = identify(fileName))
        visited.insert(*id);
    for (auto location = locations.rbegin(); location != locations.rend(); ++location)
        waiting.push_back({holders.size(), location->place, location->text});
    holders.push_back({folderOf(fileName), shownName});
}

std::optional<SchemaCache::Document> SchemaCache::next()
{
    while (!waiting.empty()) {
        const Reference reference = waiting.back();
        waiting.pop_back();
        const auto& [folder, holder] = holders[reference.holder];
        const CString path = localPath(reference.location);
        const auto file = finder.find(folder, path);
        if (!file)
            return Document{{}, {}, reference.place, reference.location};
        if (visited.insert(file->id).second)
            return Document{file->name, shownFrom(holder, folder, path, *file), reference.place, reference.location};
    }
    return std::nullopt;
}
