#include "Import/Full/MainElement.h"

#include "Files/FileFinder.h"

#include <algorithm>
#include <cctype>

namespace {

// How often each reference may be followed to find out what can be reached from where.
constexpr std::size_t kStepsPerReference = 20;

bool isLetterOrDigit(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || static_cast<unsigned char>(c) >= 0x80;
}

bool isSameLetter(char a, char b)
{
    return lowerAscii(a) == lowerAscii(b);
}

// Whether `name` stands in `text` as a word of its own, in any case.
bool hasWord(std::string_view text, std::string_view name)
{
    for (auto from = text.begin();; ++from) {
        from = std::search(from, text.end(), name.begin(), name.end(), isSameLetter);
        if (from == text.end() || name.empty())
            return false;
        const auto behind = from + static_cast<std::ptrdiff_t>(name.size());
        if ((from == text.begin() || !isLetterOrDigit(from[-1])) && (behind == text.end() || !isLetterOrDigit(*behind)))
            return true;
    }
}

bool hasFields(const SourceTypes& types, SourceTypes::Type type)
{
    return type.kind == SourceTypes::kindRecord && types.records[type.index].fieldCount > 0;
}

} // namespace

MainElement::MainElement(const SourceTypes& types, const CString& fileName, Index source) :
    types(types), seen(types.records.size())
{
    Index first = SourceTypes::kNone;
    for (Index i = 0; i < types.candidates.size(); ++i) {
        const SourceTypes::Candidate& candidate = types.candidates[i];
        if (candidate.source != source || candidate.isType)
            continue;
        first = std::min(first, i);
        if (!candidate.isAbstract && hasFields(types, candidate.type))
            ranked.push_back(i);
    }
    if (!ranked.empty()) {
        findSources();
        measureAll(stemOf(fileName));
    } else if (first != SourceTypes::kNone) {
        all.push_back(first);
    }
}

// What others lead to can't reach more than they do. So of each group of records that hold each other, one that nobody
// else leads to, a single member is measured, for the first element that stands for it.
void MainElement::findSources()
{
    RecordOrder order(types);
    for (const Index candidate : ranked)
        order.visit(types.candidates[candidate].type.index);
    std::vector<bool> isLedTo(order.componentCount());
    for (const Index record : order.query()) {
        stepsLeft += 1 + types.records[record].fieldCount;
        for (const SourceTypes::Field& field : types.fieldsOf(record))
            if (field.type.kind == SourceTypes::kindRecord &&
                order.componentOf(field.type.index) != order.componentOf(record))
                isLedTo[order.componentOf(field.type.index)] = true;
    }
    stepsLeft *= kStepsPerReference;
    for (const Index candidate : ranked)
        if (const Index component = order.componentOf(types.candidates[candidate].type.index); !isLedTo[component]) {
            isLedTo[component] = true; // the others of this component reach the same
            sources.push_back(candidate);
        }
}

void MainElement::measureAll(std::string_view fileName)
{
    Index best = sources.front(), named = SourceTypes::kNone;
    std::size_t most = 0, mostNamed = 0;
    for (const Index candidate : sources)
        if (const std::size_t size = measure(types.candidates[candidate].type.index); size > most) {
            most = size;
            best = candidate;
        }
    stepsLeft = std::max(stepsLeft, types.records.size()); // at least one name gets its chance
    for (const Index candidate : ranked)
        if (hasWord(fileName, types.candidates[candidate].name))
            if (const std::size_t size = measure(types.candidates[candidate].type.index); size > mostNamed) {
                mostNamed = size;
                named = candidate;
            }
    all.push_back(mostNamed * 2 >= most && named != SourceTypes::kNone ? named : best);
    for (const Index candidate : sources)
        if (candidate != all.front())
            all.push_back(candidate);
}

// How many records can be reached from one, itself included; 0 when the steps are used up.
std::size_t MainElement::measure(Index record)
{
    std::size_t reached = 0;
    waiting.assign(1, record);
    seen[record] = ++measurings;
    while (!waiting.empty() && stepsLeft > 0) {
        const Index at = waiting.back();
        waiting.pop_back();
        ++reached;
        for (const SourceTypes::Field& field : types.fieldsOf(at)) {
            stepsLeft -= stepsLeft > 0;
            if (field.type.kind != SourceTypes::kindRecord || seen[field.type.index] == measurings)
                continue;
            seen[field.type.index] = measurings;
            waiting.push_back(field.type.index);
        }
    }
    return waiting.empty() ? reached : 0;
}
