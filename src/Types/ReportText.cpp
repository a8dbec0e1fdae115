#include "Types/ReportText.h"

#include "Base/Json.h"
#include "Files/FileMessage.h"
#include "Import/MsgBase.h"
#include "Types/TypeStructure.h"

namespace {

using Out = std::function<void(std::string_view)>;

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
                    texts += structure.contentOf(part.typeName).typeName == "String";
                }
    }
};

CString placeOf(const SourceReport& report, const SourceReport::Entry& entry)
{
    CString place = shownFile(report.fileNameOf(entry.place.file));
    if (!place.empty() && entry.place.line > 0)
        place += ":" + std::to_string(entry.place.line);
    return place.empty() ? place : place + ": ";
}

void writeText(const SourceReport& report, const Totals& totals, const Out& out)
{
    for (const SourceReport::Entry& entry : report.queryEntries())
        out(placeOf(report, entry) + SourceReport::wordsFor(entry.construct) + ": " + entry.name + "\n");
    if (!report.queryEntries().empty())
        out("\n");
    for (const SourceReport::Count& count : report.queryCounts())
        out(std::to_string(count.times) + " " + SourceReport::wordsFor(count.construct) + "\n");
    out(formatText("%zu types, %zu fields: %zu typed, %zu left text\n", totals.types, totals.fields,
                   totals.fields - totals.texts, totals.texts));
}

void writeJson(const SourceReport& report, const Totals& totals, const Out& out)
{
    const char* separator = "\n  ";
    out("{\"places\":[");
    for (const SourceReport::Entry& entry : report.queryEntries()) {
        out(separator + ("{\"file\":" + jsonText(shownFile(report.fileNameOf(entry.place.file)))) + ",\"line\":" +
            std::to_string(entry.place.line) + ",\"construct\":" + jsonText(SourceReport::wordsFor(entry.construct)) +
            ",\"name\":" + jsonText(entry.name) + "}");
        separator = ",\n  ";
    }
    out("],\n \"counts\":{");
    separator = "";
    for (const SourceReport::Count& count : report.queryCounts()) {
        out(separator + jsonText(SourceReport::wordsFor(count.construct)) + ":" + std::to_string(count.times));
        separator = ",";
    }
    out(formatText("},\n \"totals\":{\"types\":%zu,\"fields\":%zu,\"typed\":%zu,\"text\":%zu}}\n", totals.types,
                   totals.fields, totals.fields - totals.texts, totals.texts));
}

} // namespace

void writeReport(MsgBase& message, ReportFormat format, const Out& out)
{
    const Totals totals(message);
    (format == ReportFormat::json ? writeJson : writeText)(message.queryReport(), totals, out);
}
