#include "Import/SourceReport.h"

#include "Base/Utf8.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace {

constexpr std::size_t kMaxPlaces = 10'000;
constexpr std::size_t kMaxName = 200;

constexpr const char* kWords[] = {
    "module or document not there",
    "module or document not readable",
    "document not well-formed",
    "module or document not local",
    "entity declared nowhere",
    "reference to nothing that was read",
    "section with an unknown key",
    "declaration that makes no sense",
    "declared twice",
    "SGML exception",
    "content ANY",
    "mixed content (order of text lost)",
    "any element",
    "any attribute",
    "abstract type",
    "list",
    "union of several kinds",
    "element that may not occur",
    "name changed",
    "entity not expanded",
    "statement that could not be read",
    "name that no document can carry",
    "declaration passed over",
    "group passed over",
    "extension passed over",
    "simple type passed over",
    "type not known, now text",
    "table without columns",
    "column of a type that has no counterpart",
    "facet",
    "nillable",
    "default",
    "identity constraint",
    "general entity",
    "notation",
};
static_assert(std::size(kWords) == SourceReport::constructCount);

// The beginning of a name on one line, cut between two characters of UTF-8.
CString shortened(std::string_view name)
{
    std::string_view start = name.substr(0, kMaxName);
    dropCutCharacter(start);
    CString text(start);
    if (name.size() > kMaxName)
        text += "...";
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

} // namespace

std::uint32_t SourceReport::addFile(const CString& fileName)
{
    files.push_back(fileName);
    return static_cast<std::uint32_t>(files.size() - 1);
}

void SourceReport::add(Construct construct, SourcePlace place, std::string_view name)
{
    count(construct);
    if (entries.size() < kMaxPlaces)
        entries.push_back({construct, place, shortened(name)});
}

std::size_t SourceReport::queryPlaced() const
{
    return std::accumulate(counts.begin(), counts.begin() + facet, std::size_t{0});
}

std::vector<SourceReport::Count> SourceReport::queryCounts() const
{
    std::vector<Count> found;
    for (std::size_t i = 0; i < constructCount; ++i)
        if (counts[i] > 0)
            found.push_back({static_cast<Construct>(i), counts[i]});
    std::ranges::stable_sort(found, std::greater<>(), &Count::times);
    return found;
}

const char* SourceReport::wordsFor(Construct construct)
{
    return kWords[construct];
}
