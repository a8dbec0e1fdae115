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

// The parts of a URI, the last one first, and how many of them are in the name; none for a given folder.
struct Row
{
    std::vector<std::string_view> parts;
    std::size_t count = 0;
};

// Returns the parts of a URI. The name takes those up to the first that begins with a letter, which a version doesn't.
Row rowOf(std::string_view uri)
{
    const auto beginsWithLetter = [](std::string_view part) {
        return std::isalpha(static_cast<unsigned char>(part[0])) || static_cast<unsigned char>(part[0]) >= 0x80;
    };
    Row row{partsOf(uri)};
    const auto last = std::ranges::find_if(row.parts, beginsWithLetter);
    row.count = static_cast<std::size_t>(last - row.parts.begin()) + (last == row.parts.end() ? 0 : 1);
    return row;
}

// Gives namespaces that share a name one more part, as long as any of them has one.
void lengthen(std::vector<CString>& names, std::vector<Row>& rows)
{
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
}

// Appends a number to each name that is taken. Given folders, and that of no namespace, are never changed.
void appendNumbers(std::vector<CString>& names, std::span<const SourceTypes::Space> spaces)
{
    std::set<CString> taken;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (i == 0 || !spaces[i].folder.empty())
            taken.insert(names[i]);
    std::map<CString, int> lastNumbers;
    for (std::size_t i = 1; i < names.size(); ++i)
        if (const CString plain = names[i]; spaces[i].folder.empty())
            while (!taken.insert(names[i]).second)
                names[i] = plain + "_" + std::to_string(++lastNumbers.try_emplace(plain, 1).first->second);
}

} // namespace

std::vector<CString> foldersOf(std::span<const SourceTypes::Space> spaces)
{
    std::vector<CString> names(spaces.size());
    std::vector<Row> rows(spaces.size());
    for (std::size_t i = 1; i < spaces.size(); ++i) {
        names[i] = spaces[i].folder;
        if (!names[i].empty())
            continue;
        rows[i] = rowOf(spaces[i].uri);
        names[i] = joinLast(rows[i].parts, rows[i].count);
    }
    lengthen(names, rows);
    appendNumbers(names, spaces);
    return names;
}
