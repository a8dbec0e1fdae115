#include "Import/Full/MainElement.h"

#include "Files/FileFinder.h"

#include <algorithm>
#include <cctype>
#include <span>
#include <utility>

// The number of records that an element reaches is not the sum over its fields, because these share records. So each
// candidate needs its own walk, which takes quadratic time for a chain of candidates. Two rules bound that: only
// elements that no other candidate reaches are measured, and all walks of a source share a budget of references. When
// it is exhausted, the best result so far counts.
namespace {

// The budget for measuring: how often each reference may be followed on average.
constexpr std::size_t kStepsPerReference = 20;

// A byte of a character outside of ASCII counts as a letter, so that no word ends inside such a character.
bool isLetterOrDigit(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || static_cast<unsigned char>(c) >= 0x80;
}

// Returns whether `text` contains `name` as a whole word, in any case.
bool hasWord(std::string_view text, std::string_view name)
{
    for (auto from = text.begin();; ++from) {
        from = std::search(from, text.end(), name.begin(), name.end(),
                           [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
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

MainElement::MainElement(const SourceTypes& types) :
    types(types), order({types}, types.records.size()), seen(types.records.size())
{
    for (Index i = 0; i < types.candidates.size(); ++i)
        if (!types.candidates[i].isType && types.candidates[i].source != SourceTypes::kNone)
            bySource.push_back(i);
    std::ranges::stable_sort(bySource, {}, [&](Index i) { return types.candidates[i].source; });
}

// Leaves are chosen only if the source has no other elements, and abstract ones after those.
std::vector<SourceTypes::Index> MainElement::choose(const CString& fileName, Index source)
{
    const std::size_t first = next;
    ranked.clear();
    for (; next < bySource.size() && types.candidates[bySource[next]].source == source; ++next) {
        const SourceTypes::Candidate& candidate = types.candidates[bySource[next]];
        if (!candidate.isAbstract && hasFields(types, candidate.type))
            ranked.push_back(bySource[next]);
    }
    if (first == next)
        return {};
    if (ranked.size() <= 1) // nothing to measure, as in most schemas of a set
        return {ranked.empty() ? firstLeaf(first) : ranked.front()};
    findSources();
    return measureAll(stemOf(fileName));
}

// Returns the first candidate from `first` to `next` that isn't abstract, else the first one.
MainElement::Index MainElement::firstLeaf(std::size_t first) const
{
    const auto own = std::span(bySource).subspan(first, next - first);
    const auto found = std::ranges::find(own, false, [this](Index i) { return types.candidates[i].isAbstract; });
    return found == own.end() ? own.front() : *found;
}

// Finds the candidates to measure. A record reaches no more than the records that refer to it. So one member of each
// cycle that nothing outside refers to is measured, for the first element that it belongs to.
void MainElement::findSources()
{
    for (const Index candidate : ranked)
        order.visit(types.candidates[candidate].type.index);
    lastWalkInto.resize(order.componentCount());
    const Index turn = ++walks;
    waiting.clear();
    const auto visit = [&](Index record) {
        if (std::exchange(seen[record], turn) != turn)
            waiting.push_back(record);
    };
    for (const Index candidate : ranked)
        visit(types.candidates[candidate].type.index);
    stepsLeft = 0;
    // Nothing is removed from `waiting`, and each record that the candidates reach is added once.
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        const Index record = waiting[i];
        stepsLeft += 1 + types.records[record].fieldCount;
        for (const SourceTypes::Field& field : types.fieldsOf(record))
            if (field.type.kind == SourceTypes::kindRecord) {
                if (order.componentOf(field.type.index) != order.componentOf(record))
                    lastWalkInto[order.componentOf(field.type.index)] = turn;
                visit(field.type.index);
            }
    }
    stepsLeft *= kStepsPerReference;
    sources.clear();
    for (const Index candidate : ranked) {
        const Index component = order.componentOf(types.candidates[candidate].type.index);
        if (std::exchange(lastWalkInto[component], turn) != turn) // the others of this component reach the same
            sources.push_back(candidate);
    }
}

// Measures `sources`, then the elements whose name is a word of the file's name, which need not be among these.
std::vector<SourceTypes::Index> MainElement::measureAll(std::string_view fileName)
{
    Index best = sources.front(), named = SourceTypes::kNone;
    std::size_t most = 0, mostNamed = 0;
    for (const Index candidate : sources)
        if (const std::size_t size = measure(types.candidates[candidate].type.index); size > most) {
            most = size;
            best = candidate;
        }
    stepsLeft = std::max(stepsLeft, types.records.size()); // enough for at least one named candidate
    for (const Index candidate : ranked)
        if (hasWord(fileName, types.candidates[candidate].name))
            if (const std::size_t size = measure(types.candidates[candidate].type.index); size > mostNamed) {
                mostNamed = size;
                named = candidate;
            }
    std::vector<Index> all;
    all.push_back(mostNamed * 2 >= most && named != SourceTypes::kNone ? named : best);
    for (const Index candidate : sources)
        if (candidate != all.front())
            all.push_back(candidate);
    return all;
}

// Returns the number of records that can be reached from one, itself included; 0 if the budget is exhausted.
std::size_t MainElement::measure(Index record)
{
    std::size_t reached = 0;
    const Index turn = ++walks;
    waiting.assign(1, record);
    seen[record] = turn;
    while (!waiting.empty() && stepsLeft > 0) {
        const Index at = waiting.back();
        waiting.pop_back();
        ++reached;
        for (const SourceTypes::Field& field : types.fieldsOf(at)) {
            stepsLeft -= stepsLeft > 0;
            if (field.type.kind != SourceTypes::kindRecord || seen[field.type.index] == turn)
                continue;
            seen[field.type.index] = turn;
            waiting.push_back(field.type.index);
        }
    }
    return waiting.empty() ? reached : 0;
}
