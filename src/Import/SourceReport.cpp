#include "Import/SourceReport.h"

#include "Base/Fingerprint.h"
#include "Base/Utf8.h"

#include <algorithm>
#include <functional>

namespace {

constexpr std::size_t kMaxName = 200;
constexpr std::size_t kBytesToNote = 40; // in the set of what is noted

using Row = SourceReport::Row;
constexpr auto loss = SourceReport::loss, detail = SourceReport::detail;

constexpr Row kRows[] = {
    {"module or document not there", loss, "document not found", "documents not found"},
    {"module or document not readable", loss, "document not readable", "documents not readable"},
    {"document not well-formed", loss, "document not well-formed", "documents not well-formed"},
    {"module or document not local", loss, "document not local", "documents not local"},
    {"entity declared nowhere", loss, "undeclared entity", "undeclared entities"},
    {"reference to nothing that was read", loss, "reference became text", "references became text"},
    {"group or base type that was not read", loss, "group or base type missing", "groups or base types missing"},
    {"section with an unknown key", loss, "section not understood", "sections not understood"},
    {"statement that is unknown", loss, "statement not understood", "statements not understood"},
    {"attribute that is unknown", loss, "attribute not understood", "attributes not understood"},
    {"statement that has no effect there", loss, "statement without effect", "statements without effect"},
    {"value that makes no sense", loss, "value not understood", "values not understood"},
    {"comment or declaration without an end", loss, "comment or declaration without an end",
     "comments or declarations without an end"},
    {"declaration that makes no sense", loss, "declaration not understood", "declarations not understood"},
    {"statement that could not be read", loss, "statement not understood", "statements not understood", true},
    {"declaration inside itself", loss, "declaration inside itself", "declarations inside themselves", true},
    {"type that nobody declares", loss, "invented type", "invented types"},
    {"declared twice", loss, "second declaration left out", "second declarations left out"},
    {"main type is abstract", loss, "abstract main type", "abstract main types"},
    {"cut short by a bound", loss, "text cut short", "texts cut short"},
    {"name that no document can carry", loss, "impossible name", "impossible names"},
    {"entity not expanded", loss, "entity not expanded", "entities not expanded"},
    {"declaration passed over", loss, "declaration passed over", "declarations passed over"},
    {"group passed over", loss, "group passed over", "groups passed over"},
    {"extension passed over", loss, "extension passed over", "extensions passed over"},
    {"simple type passed over", loss, "simple type passed over", "simple types passed over"},
    {"restriction passed over", loss, "restriction passed over", "restrictions passed over"},
    {"substitution group passed over", loss, "substitution group passed over", "substitution groups passed over"},
    {"text beside fields passed over", loss, "text passed over", "texts passed over"},
    {"type not known, now text", loss, "reference became text", "references became text"},
    {"name that means something else elsewhere", loss, "field took another's type", "fields took another's type"},
    {"repetition passed over", loss, "repetition passed over", "repetitions passed over"},
    {"taken for a repetition", loss, "invented repetition", "invented repetitions"},
    {"without a name", loss, "missing name", "missing names"},
    {"column of a type that has no counterpart", loss, "column left out", "columns left out"},
    {"table without columns", loss, "table without columns", "tables without columns"},
    {"table that is no longer there", loss, "table no longer there", "tables no longer there"},
    {"table whose name can't be asked for", loss, "table left out", "tables left out"},
    {"columns of several owners in one record", loss, "record of several owners", "records of several owners"},
    {"SGML exception", detail, "SGML exception", "SGML exceptions"},
    {"content ANY", detail, "content ANY", "contents ANY"},
    {"mixed content (order of text lost)", detail, "mixed content", "mixed contents"},
    {"any element", detail, "any element", "any elements"},
    {"any attribute", detail, "any attribute", "any attributes"},
    {"abstract type", detail, "abstract type", "abstract types"},
    {"list", detail, "list", "lists"},
    {"union of several kinds", detail, "union", "unions"},
    {"element that may not occur", detail, "element that may not occur", "elements that may not occur"},
    {"name changed", detail, "name changed", "names changed"},
    {"name made fit", detail, "name made fit", "names made fit"},
    {"attribute declared twice", detail, "attribute declared twice", "attributes declared twice"},
    {"entity or notation passed over", detail, "entity passed over", "entities passed over"},
    {"optional", detail, "optional", "optional"},
    {"bounds of occurrence", detail, "bound of occurrence", "bounds of occurrence"},
    {"choice between alternatives", detail, "choice", "choices"},
    {"content in any order", detail, "content in any order", "contents in any order"},
    {"facet", detail, "facet", "facets"},
    {"nillable", detail, "nillable", "nillable"},
    {"default", detail, "default", "defaults"},
    {"limit on derivation", detail, "limit on derivation", "limits on derivation"},
    {"type alternative", detail, "type alternative", "type alternatives"},
    {"assertion", detail, "assertion", "assertions"},
    {"identity constraint", detail, "identity constraint", "identity constraints"},
    {"general entity", detail, "general entity", "general entities"},
    {"notation", detail, "notation", "notations"},
};
static_assert(std::size(kRows) == SourceReport::constructCount);

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

std::uint64_t hashOf(SourceReport::Construct construct, SourcePlace place, std::string_view name)
{
    const std::uint32_t head[] = {construct, place.file, place.line, place.column};
    const RunningHash hash({reinterpret_cast<const char*>(head), sizeof head});
    return Fingerprint(RunningHash(hash).append(name)).first;
}

} // namespace

const SourceReport::Row& SourceReport::rowFor(Construct construct)
{
    return kRows[construct];
}

std::uint32_t SourceReport::addFile(const CString& fileName)
{
    files.push_back(fileName);
    return static_cast<std::uint32_t>(files.size() - 1);
}

// Without a column several of a kind may well stand at one place.
void SourceReport::add(Construct construct, SourcePlace place, std::string_view name)
{
    const Sort sort = rowFor(construct).sort;
    Places& kept = places[sort];
    if (kept.bytes >= kMaxMegabytes[sort] << 20) {
        ++counts[construct];
        ++kept.unlisted;
        return;
    }
    if (place.column > 0 && !noted.insert(hashOf(construct, place, name)).second)
        return;
    ++counts[construct];
    kept.entries.push_back({names.keep(shortened(name)), place, construct});
    kept.bytes += sizeof(Entry) + kept.entries.back().name.size() + kBytesToNote;
}

CString SourceReport::inWords(const Entry& entry)
{
    return wordsFor(entry.construct) + (": " + (entry.name.empty() ? CString("(no name)") : CString(entry.name)));
}

std::size_t SourceReport::queryTotal(Sort sort) const
{
    std::size_t total = 0;
    for (std::size_t i = 0; i < constructCount; ++i)
        total += kRows[i].sort == sort ? counts[i] : 0;
    return total;
}

std::vector<SourceReport::Count> SourceReport::queryCounts(Sort sort) const
{
    std::vector<Count> found;
    for (std::size_t i = 0; i < constructCount; ++i)
        if (kRows[i].sort == sort && counts[i] > 0)
            found.push_back({static_cast<Construct>(i), counts[i]});
    std::ranges::stable_sort(found, std::greater<>(), &Count::times);
    return found;
}

CString SourceReport::lossesInWords() const
{
    std::vector<Count> kinds; // of several constructs with equal words the first
    for (const Count& count : queryCounts(loss)) {
        const auto known = std::ranges::find_if(kinds, [&](const Count& kind) {
            return std::string_view(rowFor(kind.construct).plural) == rowFor(count.construct).plural;
        });
        if (known == kinds.end())
            kinds.push_back(count);
        else
            known->times += count.times;
    }
    std::ranges::stable_sort(kinds, std::greater<>(), &Count::times);
    const std::size_t total = queryTotal(loss);
    CString text = total == 0 ? "" : std::to_string(total) + (total == 1 ? " loss" : " losses");
    const char* separator = ": ";
    for (const Count& kind : kinds) {
        const Row& row = rowFor(kind.construct);
        text += separator + std::to_string(kind.times) + " " + (kind.times == 1 ? row.singular : row.plural);
        separator = ", ";
    }
    return text;
}

void SourceReport::clear()
{
    files.clear();
    places = {};
    noted.clear();
    names.release();
    counts = {};
}
