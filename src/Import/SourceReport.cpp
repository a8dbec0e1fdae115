#include "Import/SourceReport.h"

#include "Base/Fingerprint.h"
#include "Base/Utf8.h"
#include "Files/FileMessage.h"

#include <algorithm>
#include <functional>

namespace {

constexpr std::size_t kMaxName = 200;    // bytes; a name can be as long as the source
constexpr std::size_t kBytesToNote = 40; // bytes that an entry takes in `seen`, roughly

using Row = SourceReport::Row;
constexpr auto loss = SourceReport::loss, detail = SourceReport::detail;

// In the order of the enumerators: id, words, sort, words after a count of one, and of others. The ids are part of the
// format of reports, so they stay even if an enumerator is renamed.
constexpr Row kRows[] = {
    {"document-missing", "module or document not there", loss, "document not found", "documents not found"},
    {"document-unreadable", "module or document not readable", loss, "document not readable", "documents not readable"},
    {"document-ill-formed", "document not well-formed", loss, "document not well-formed", "documents not well-formed"},
    {"document-remote", "module or document not local", loss, "document not local", "documents not local"},
    {"entity-undeclared", "entity declared nowhere", loss, "undeclared entity", "undeclared entities"},
    {"reference-unresolved", "reference to nothing that was read", loss, "reference became text",
     "references became text"},
    {"content-unresolved", "missing group or base type", loss, "group or base type missing",
     "groups or base types missing"},
    {"section-unknown", "section with an unknown key", loss, "section not understood", "sections not understood"},
    {"statement-unknown", "unknown statement", loss, "statement not understood", "statements not understood"},
    {"attribute-unknown", "unknown attribute", loss, "attribute not understood", "attributes not understood"},
    {"statement-misplaced", "statement that has no effect there", loss, "statement without effect",
     "statements without effect"},
    {"value-invalid", "invalid value", loss, "value not understood", "values not understood"},
    {"unterminated", "comment or declaration without an end", loss, "comment or declaration without an end",
     "comments or declarations without an end"},
    {"declaration-invalid", "declaration that makes no sense", loss, "declaration not understood",
     "declarations not understood"},
    {"statement-unreadable", "statement that could not be read", loss, "statement not understood",
     "statements not understood", true},
    {"declaration-recursive", "declaration inside itself", loss, "declaration inside itself",
     "declarations inside themselves", true},
    {"type-invented", "type without a declaration", loss, "invented type", "invented types"},
    {"declared-twice", "declared twice", loss, "second declaration", "second declarations"},
    {"main-type-abstract", "main type is abstract", loss, "abstract main type", "abstract main types"},
    {"cut-short", "cut short by a bound", loss, "text cut short", "texts cut short"},
    {"name-impossible", "name that XML can't represent", loss, "impossible name", "impossible names"},
    {"entity-not-expanded", "entity not expanded", loss, "entity not expanded", "entities not expanded"},
    {"declaration-skipped", "declaration skipped", loss, "declaration skipped", "declarations skipped"},
    {"group-skipped", "group skipped", loss, "group skipped", "groups skipped"},
    {"extension-skipped", "extension skipped", loss, "extension skipped", "extensions skipped"},
    {"simple-type-skipped", "simple type skipped", loss, "simple type skipped", "simple types skipped"},
    {"restriction-skipped", "restriction skipped", loss, "restriction skipped", "restrictions skipped"},
    {"substitution-skipped", "substitution group skipped", loss, "substitution group skipped",
     "substitution groups skipped"},
    {"text-skipped", "text beside fields skipped", loss, "text skipped", "texts skipped"},
    {"type-unknown", "unknown type, imported as text", loss, "reference became text", "references became text"},
    {"merged-by-name", "name declared differently elsewhere", loss, "field took another's type",
     "fields took another's type"},
    {"repetition-skipped", "repetition skipped", loss, "repetition skipped", "repetitions skipped"},
    {"repetition-invented", "single field read as repeated", loss, "invented repetition", "invented repetitions"},
    {"name-missing", "without a name", loss, "missing name", "missing names"},
    {"column-skipped", "column of an unsupported type", loss, "column left out", "columns left out"},
    {"table-empty", "table without columns", loss, "table without columns", "tables without columns"},
    {"table-gone", "table that is no longer there", loss, "table no longer there", "tables no longer there"},
    {"table-unnamed", "table whose name can't be looked up", loss, "table left out", "tables left out"},
    {"several-tables", "columns of several tables in one record", loss, "record of several tables",
     "records of several tables"},
    {"table-hidden", "table hidden by another of its name", loss, "table left out", "tables left out"},
    {"kinds-differ", "values of different kinds", loss, "value of several kinds", "values of several kinds"},
    {"properties-skipped", "further properties of any name", loss, "further properties left out",
     "further properties left out"},
    {"key-twice", "key given twice", loss, "key given twice", "keys given twice"},
    {"bytes-skipped", "bytes, which are not supported", loss, "field of bytes left out", "fields of bytes left out"},
    {"sgml-exception", "SGML exception", detail, "SGML exception", "SGML exceptions"},
    {"any-content", "content ANY", detail, "content ANY", "contents ANY"},
    {"mixed-content", "mixed content (order of text lost)", detail, "mixed content", "mixed contents"},
    {"any-element", "any element", detail, "any element", "any elements"},
    {"any-attribute", "any attribute", detail, "any attribute", "any attributes"},
    {"abstract-type", "abstract type", detail, "abstract type", "abstract types"},
    {"derived-type", "type that may replace an abstract one", detail, "type for an abstract one",
     "types for abstract ones"},
    {"replaceable-type", "type that a derived one may replace", detail, "replaceable type", "replaceable types"},
    {"type-alternative", "type alternative", detail, "type alternative", "type alternatives"},
    {"section-left-out", "section left out by an entity", detail, "section left out", "sections left out"},
    {"list-type", "list", detail, "list", "lists"},
    {"union-type", "union of several kinds", detail, "union", "unions"},
    {"element-not-allowed", "part that may not occur", detail, "part that may not occur", "parts that may not occur"},
    {"name-changed", "name changed", detail, "name changed", "names changed"},
    {"name-made-fit", "name adjusted", detail, "name adjusted", "names adjusted"},
    {"attribute-declared-twice", "attribute declared twice", detail, "attribute declared twice",
     "attributes declared twice"},
    {"entity-skipped", "entity or notation skipped", detail, "entity skipped", "entities skipped"},
    {"optional", "optional", detail, "optional part", "optional parts"},
    {"occurrence-bounds", "bounds of occurrence", detail, "bound of occurrence", "bounds of occurrence"},
    {"choice", "choice between alternatives", detail, "choice", "choices"},
    {"any-order", "content in any order", detail, "content in any order", "contents in any order"},
    {"facet", "facet", detail, "facet", "facets"},
    {"documentation-cut", "documentation left out in part", detail, "documentation cut short",
     "documentations cut short"},
    {"nillable", "nillable", detail, "nillable element", "nillable elements"},
    {"default-value", "default", detail, "default value", "default values"},
    {"derivation-limit", "limit on derivation", detail, "limit on derivation", "limits on derivation"},
    {"assertion", "assertion", detail, "assertion", "assertions"},
    {"identity-constraint", "identity constraint", detail, "identity constraint", "identity constraints"},
    {"general-entity", "general entity", detail, "general entity", "general entities"},
    {"notation", "notation", detail, "notation", "notations"},
};
static_assert(std::size(kRows) == SourceReport::constructCount);

// Returns the first kMaxName bytes of a name on one line, not cut inside a UTF-8 sequence.
CString shortened(std::string_view name)
{
    std::string_view start = name.substr(0, kMaxName);
    dropPartialCharacter(start);
    CString text = shownText(start);
    if (name.size() > kMaxName)
        text += "...";
    return text;
}

// Returns whether such a construct may hide components of the source. It then belongs to the whole source, because the
// requested types may need the hidden ones.
bool mayHideComponents(SourceReport::Construct construct)
{
    return construct <= SourceReport::moduleRemote || construct == SourceReport::unterminated;
}

// Returns a hash of an entry, which identifies repetitions without storing whole names.
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

void SourceReport::add(Construct construct, SourcePlace place, std::string_view name)
{
    if (mode == paused)
        return;
    const std::uint64_t hash = hashOf(construct, place, name);
    // Beyond the bound, a place is reported even if its component turns out not to be reached.
    if (mode == holding && heldBytes < kMaxMegabytes[loss] << 20) {
        const Component owner = mayHideComponents(construct) ? 0 : component;
        heldPlaces.push_back({{names.keep(shortened(name)), place, construct}, hash, owner});
        heldBytes += sizeof(HeldPlace) + heldPlaces.back().entry.name.size();
    } else if (countPlace(construct, place, hash)) {
        list({names.keep(shortened(name)), place, construct});
    }
}

void SourceReport::addIllFormed(std::uint32_t file, const SourceFault& fault, SourcePlace namedAt)
{
    const CString from = placeInWords(fileNameOf(namedAt.file), namedAt.line, namedAt.column);
    add(moduleIllFormed, {file, static_cast<std::uint32_t>(fault.line), static_cast<std::uint32_t>(fault.column)},
        fault.reason + " (named in " + from + ")");
}

// Counts a construct, and returns whether to list its place. Repetitions are dropped only if the column is known,
// because several equal constructs may be on one line.
bool SourceReport::countPlace(Construct construct, SourcePlace place, std::uint64_t hash)
{
    const Sort sort = rowFor(construct).sort;
    const bool isFull = places[sort].bytes >= kMaxMegabytes[sort] << 20;
    if (!isFull && place.column > 0 && !seen.insert(hash, 0).second)
        return false;
    ++counts[construct];
    places[sort].unlisted += isFull;
    return !isFull;
}

void SourceReport::list(const Entry& entry)
{
    Places& kept = places[rowFor(entry.construct).sort];
    kept.entries.push_back(entry);
    kept.bytes += sizeof(Entry) + entry.name.size() + kBytesToNote;
}

// Adds up the counts of a component, so that a large one takes no more memory. Only the last entries are searched:
// those of the current component, at most one for each construct.
void SourceReport::holdBack(Construct construct, std::size_t times)
{
    if (times == 0)
        return;
    for (auto held = heldCounts.rbegin(); held != heldCounts.rend() && held->component == component; ++held)
        if (held->construct == construct) {
            held->times += times;
            return;
        }
    heldCounts.push_back({times, component, construct});
}

// Calls countPlace() like add(), so the result is the report of the reached components alone.
void SourceReport::release(const std::function<bool(Component)>& isReached)
{
    const auto isReported = [&](Component owner) { return owner == 0 || !isReached || isReached(owner); };
    mode = reporting;
    for (const HeldPlace& held : heldPlaces)
        if (isReported(held.component) && countPlace(held.entry.construct, held.entry.place, held.hash))
            list(held.entry);
    for (const HeldCount& held : heldCounts)
        if (isReported(held.component))
            count(held.construct, held.times);
    heldPlaces.clear();
    heldCounts.clear();
    heldBytes = 0;
    component = 0;
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

// The sort is stable, so constructs with equal counts are in the order of the table.
std::vector<SourceReport::Count> SourceReport::queryCounts(Sort sort) const
{
    std::vector<Count> found;
    for (std::size_t i = 0; i < constructCount; ++i)
        if (kRows[i].sort == sort && counts[i] > 0)
            found.push_back({static_cast<Construct>(i), counts[i]});
    std::ranges::stable_sort(found, std::greater<>(), &Count::times);
    return found;
}

std::vector<CString> SourceReport::countsInWords(Sort sort) const
{
    std::vector<Count> kinds; // for constructs with equal words, the first
    for (const Count& count : queryCounts(sort)) {
        const auto known = std::ranges::find_if(kinds, [&](const Count& kind) {
            return std::string_view(rowFor(kind.construct).plural) == rowFor(count.construct).plural;
        });
        if (known == kinds.end())
            kinds.push_back(count);
        else
            known->times += count.times;
    }
    std::ranges::stable_sort(kinds, std::greater<>(), &Count::times);
    std::vector<CString> lines;
    for (const Count& kind : kinds)
        lines.push_back(countInWords(kind.times, rowFor(kind.construct).singular, rowFor(kind.construct).plural));
    return lines;
}

CString SourceReport::lossesInWords() const
{
    const std::size_t total = queryTotal(loss);
    CString text = total == 0 ? "" : countInWords(total, "loss", "losses");
    const char* separator = ": ";
    for (const CString& count : countsInWords(loss)) {
        text += separator + count;
        separator = ", ";
    }
    return text;
}

void SourceReport::clear()
{
    files.clear();
    places = {};
    seen = {};
    names.release();
    counts = {};
    mode = reporting;
    component = 0;
    heldPlaces.clear();
    heldBytes = 0;
    heldCounts.clear();
}
