#include "Types/ReportText.h"

#include "Base/Json.h"
#include "Files/FileMessage.h"
#include "Import/MsgBase.h"
#include "Types/TypeStructure.h"

namespace {

using Out = std::function<void(std::string_view)>;

// The totals of the report's last line. A field counts as text if its content is "String", also inside tables and
// arrays.
struct Totals
{
    std::size_t types = 0;
    std::size_t fields = 0;
    std::size_t texts = 0; // of the fields

    explicit Totals(MsgBase& message)
    {
        const TypeStructure structure(message);
        types = structure.size();
        for (std::uint32_t type = 0; type < structure.size(); ++type)
            for (const TypePart& part : structure.parts(type))
                if (part.kind == TypePart::field) {
                    ++fields;
                    texts += structure.contentOf(part).typeName == "String";
                }
    }
};

// In the order of the report.
constexpr SourceReport::Sort kSorts[] = {SourceReport::loss, SourceReport::detail};

// Returns "FILE:LINE:COL: ", empty for an entry without a file. File names are shown without control characters,
// because the report can go to a terminal.
CString placeOf(const SourceReport& report, const SourceReport::Entry& entry)
{
    const CString place = placeInWords(report.fileNameOf(entry.place.file), entry.place.line, entry.place.column);
    return place.empty() ? place : shownText(place) + ": ";
}

CString headingOf(SourceReport::Sort sort, std::size_t total)
{
    return sort == SourceReport::loss ? countInWords(total, "loss", "losses")
                                      : countInWords(total, "detail", "details");
}

// Returns the line for places that were only counted, because the list of places had reached its bound.
CString unlistedInWords(SourceReport::Sort sort, std::size_t times)
{
    return "... and " + std::to_string(times) + " more, over the limit of " +
           std::to_string(SourceReport::kMaxMegabytes[sort]) + " MB for places\n";
}

// Writes the lists of places, then the counts and the totals.
void writeText(const SourceReport& report, const Totals& totals, const Out& out)
{
    for (const SourceReport::Sort sort : kSorts) {
        if (report.queryTotal(sort) == 0)
            continue;
        out(headingOf(sort, report.queryTotal(sort)) + "\n");
        for (const SourceReport::Entry& entry : report.queryEntries(sort))
            out(placeOf(report, entry) + SourceReport::inWords(entry) + "\n");
        if (const std::size_t times = report.queryUnlisted(sort); times > 0)
            out(unlistedInWords(sort, times));
        out("\n");
    }
    for (const SourceReport::Sort sort : kSorts)
        for (const CString& count : report.countsInWords(sort))
            out(count + "\n");
    out(countInWords(totals.types, "type", "types") + ", " + countInWords(totals.fields, "field", "fields") +
        formatText(": %zu typed, %zu left text\n", totals.fields - totals.texts, totals.texts));
}

// Returns a place as docs/report.schema.json describes it. Unknown values are null.
CString jsonOf(const SourceReport& report, const SourceReport::Entry& entry)
{
    const auto number = [](std::uint32_t n) { return n == 0 ? CString("null") : std::to_string(n); };
    const CString& file = report.fileNameOf(entry.place.file);
    return "{\"sort\":" + CString(SourceReport::isLoss(entry.construct) ? "\"loss\"" : "\"detail\"") +
           ",\"construct\":" + jsonText(SourceReport::rowFor(entry.construct).id) +
           ",\"file\":" + (file.empty() ? "null" : jsonText(shownFile(file))) +
           ",\"line\":" + number(entry.place.line) +
           ",\"column\":" + number(entry.place.line ? entry.place.column : 0) +
           ",\"name\":" + jsonText(CString(entry.name)) + "}";
}

// Returns the counts of the given sorts as one object.
CString jsonCounts(const SourceReport& report, std::initializer_list<SourceReport::Sort> sorts)
{
    CString members;
    for (const SourceReport::Sort sort : sorts)
        for (const SourceReport::Count& count : report.queryCounts(sort))
            members += (members.empty() ? "" : ",") + jsonText(SourceReport::rowFor(count.construct).id) + ":" +
                       std::to_string(count.times);
    return "{" + members + "}";
}

// Names constructs by their ids, which never change, not by words.
void writeJson(const SourceReport& report, const Totals& totals, const Out& out)
{
    constexpr auto loss = SourceReport::loss, detail = SourceReport::detail;
    const char* separator = "\n  ";
    out("{\"version\":1,\"places\":[");
    for (const SourceReport::Sort sort : kSorts)
        for (const SourceReport::Entry& entry : report.queryEntries(sort)) {
            out(separator + jsonOf(report, entry));
            separator = ",\n  ";
        }
    out("],\n \"counts\":" + jsonCounts(report, {loss, detail}));
    out(",\n \"losses\":" + jsonCounts(report, {loss}));
    out(",\n \"details\":" + jsonCounts(report, {detail}));
    out(formatText(",\n \"unlisted\":{\"losses\":%zu,\"details\":%zu}", report.queryUnlisted(loss),
                   report.queryUnlisted(detail)));
    out(formatText(",\n \"totals\":{\"losses\":%zu,\"details\":%zu,\"types\":%zu,\"fields\":%zu,\"typed\":%zu,"
                   "\"text\":%zu}}\n",
                   report.queryTotal(loss), report.queryTotal(detail), totals.types, totals.fields,
                   totals.fields - totals.texts, totals.texts));
}

} // namespace

void writeReport(MsgBase& message, ReportFormat format, const Out& out)
{
    const Totals totals(message);
    (format == ReportFormat::json ? writeJson : writeText)(message.queryReport(), totals, out);
}
