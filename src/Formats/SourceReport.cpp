#include "Formats/SourceReport.h"

#include "Platform/Utf8.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr std::size_t kMaxPlaces = 10'000;
constexpr std::size_t kMaxName = 200;

constexpr const char* kWords[] = {
    "module or document not there",
    "module or document not readable",
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

void SourceReport::write(const std::function<void(std::string_view)>& out) const
{
    for (const Entry& entry : entries) {
        const CString line = entry.place.line ? std::to_string(entry.place.line) + ": " : "";
        out(files[entry.place.file] + ":" + line + kWords[entry.construct] + ": " + entry.name + "\n");
    }
    std::vector<std::size_t> order(constructCount);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return counts[a] > counts[b]; });
    if (!entries.empty())
        out("\n");
    for (const std::size_t construct : order)
        if (counts[construct] > 0)
            out(std::to_string(counts[construct]) + " " + kWords[construct] + "\n");
}
