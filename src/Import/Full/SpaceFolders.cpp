#include "Import/Full/SpaceFolders.h"

#include <algorithm>
#include <cctype>
#include <set>

// A folder begins at the last part with a letter, because a version or year alone has no meaning:
// "http://www.opengis.net/gml/3.2" is "gml-3.2". All namespaces that share a name get a longer one, not only the later
// ones, so that a name doesn't depend on the order of documents.
namespace {

constexpr std::size_t kMaxParts = 16; // adding parts one by one takes time quadratic in their number

// Returns the parts of a URI without empty ones, last one first, at most kMaxParts.
std::vector<std::string_view> partsOf(std::string_view uri)
{
    std::vector<std::string_view> parts;
    while (!uri.empty()) {
        const std::size_t end = std::min(uri.find_first_of(":/#?\\ \t\r\n"), uri.size());
        if (end > 0)
            parts.push_back(uri.substr(0, end));
        uri.remove_prefix(std::min(end + 1, uri.size()));
    }
    std::ranges::reverse(parts);
    parts.resize(std::min(parts.size(), kMaxParts));
    return parts;
}

CString joinLast(const std::vector<std::string_view>& parts, std::size_t count)
{
    CString name;
    for (std::size_t i = count; i-- > 0;)
        name.append(name.empty() ? "" : "-").append(parts[i]);
    return name.empty() ? "_" : toXmlText(name);
}

} // namespace

std::vector<CString> foldersOf(std::span<const SourceTypes::Space> spaces)
{
    struct Row
    {
        std::vector<std::string_view> parts;
        std::size_t count = 0;
    };
    std::vector<CString> names(spaces.size());
    std::vector<Row> rows(spaces.size()); // without parts if the folder is given
    const auto beginsWithLetter = [](std::string_view part) {
        return std::isalpha(static_cast<unsigned char>(part[0])) || static_cast<unsigned char>(part[0]) >= 0x80;
    };
    for (std::size_t i = 1; i < spaces.size(); ++i) {
        names[i] = spaces[i].folder;
        if (!names[i].empty())
            continue;
        auto& [parts, count] = rows[i];
        parts = partsOf(spaces[i].uri);
        const auto last = std::ranges::find_if(parts, beginsWithLetter);
        count = static_cast<std::size_t>(last - parts.begin()) + (last == parts.end() ? 0 : 1);
        names[i] = joinLast(parts, count);
    }
    // Namespaces that share a name get one more part, as long as any of them has one.
    for (bool isLonger = true; isLonger;) {
        std::map<CString, std::vector<std::size_t>> users;
        for (std::size_t i = 0; i < names.size(); ++i)
            users[names[i]].push_back(i);
        isLonger = false;
        for (const auto& [name, sharing] : users)
            for (const std::size_t i : sharing)
                if (sharing.size() > 1 && rows[i].count < rows[i].parts.size()) {
                    names[i] = joinLast(rows[i].parts, ++rows[i].count);
                    isLonger = true;
                }
    }
    // Given folders, and that of no namespace, are never changed.
    std::set<CString> taken;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (i == 0 || !spaces[i].folder.empty())
            taken.insert(names[i]);
    std::map<CString, int> lastNumbers;
    for (std::size_t i = 1; i < names.size(); ++i)
        if (const CString plain = names[i]; spaces[i].folder.empty())
            while (!taken.insert(names[i]).second)
                names[i] = plain + "_" + std::to_string(++lastNumbers.try_emplace(plain, 1).first->second);
    return names;
}
