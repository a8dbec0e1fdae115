#include "Import/Dtd/DTDRepetitions.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <vector>

// Only declarations around the added fields are read again, each once, so a DTD without repetitions costs nothing.
// Statements of the literal reading may span several declarations. A mention is therefore looked up by its place among
// the real declarations, which begin at a '<'.
namespace {

constexpr std::string_view kKeyword = "ELEMENT";
constexpr CharSet kBeforeContent(" \t\r\n(");

} // namespace

void DTDRepetitions::reportAll(const TypeModel& model, TextPlaces& places, SourceReport& report)
{
    RepeatedFields inModel(model);
    for (const auto& [element, record, place, isMarked, attribute] : fields) {
        const bool staysSingle = inModel.staysSingle(*element, record->queryNumber());
        const bool repeats = isMarked || mayRepeat(place);
        // The place of what occurs once in the DTD: this mention, or, if it repeats, the attribute of the same name.
        const std::size_t single = repeats ? attribute : place;
        if (staysSingle && repeats)
            report.add(SourceReport::repetitionSkipped, places.at(place), element->queryName());
        else if (!staysSingle && single != kNowhere && isXmlName(element->queryName())) // others are reported as such
            report.add(SourceReport::inventedRepetition, places.at(single), element->queryName());
    }
}

// Returns whether the name at `place` may occur more than once by the ELEMENT declaration around it; false if there is
// none.
bool DTDRepetitions::mayRepeat(std::size_t place)
{
    auto found = declarations.upper_bound(place);
    if (found == declarations.begin() || std::prev(found)->second.end <= place) {
        const std::size_t start = std::min(text.rfind('<', place), place);
        found = std::next(declarations.emplace(start, read(start)).first);
    }
    return std::prev(found)->second.repeated.contains(dtdNameAt(text.substr(place)));
}

// Reads the content model of the declaration at `start`, leniently: unknown characters are skipped, and missing ')' are
// added at the end. Without the keyword, the result has no names.
DTDRepetitions::Declaration DTDRepetitions::read(std::size_t start)
{
    Declaration made{std::min(text.find('<', start + 1), text.size()), {}};
    const std::string_view all = text.substr(0, std::min(text.find('>', start), made.end));
    std::size_t at = all.find(kKeyword, start);
    if (at == all.npos)
        return made;
    at = kBeforeContent.in(all, std::min(kDtdBlank.out(all, at + kKeyword.size()), all.size()));
    const auto repeatsAt = [all](std::size_t mark) {
        return mark < all.size() && (all[mark] == '*' || all[mark] == '+');
    };
    std::unordered_map<std::string_view, std::uint32_t> numbers;
    std::vector<std::string_view> names;
    std::size_t depth = 1;
    content.clear();
    content.beginGroup(ContentModel::undecided);
    while (at < all.size()) {
        const std::string_view name = dtdNameAt(all.substr(at));
        at += name.size();
        if (!name.empty()) {
            const auto [number, isNew] = numbers.try_emplace(name, static_cast<std::uint32_t>(names.size()));
            if (isNew)
                names.push_back(name);
            content.add(number->second, repeatsAt(at));
            continue;
        }
        const char mark = all[at++];
        if (mark == '(') {
            content.beginGroup(ContentModel::undecided);
            ++depth;
        } else if (mark == ')' && depth > 1) {
            content.endGroup(repeatsAt(at));
            --depth;
        } else if (mark == '|') {
            content.decide(ContentModel::choice);
        } else if (mark == ',' || mark == '&') {
            content.decide(ContentModel::sequence);
        }
    }
    while (depth-- > 0)
        content.endGroup(false);
    for (const ContentModel::Entry& entry : content.query())
        if (entry.repeats)
            made.repeated.insert(names[entry.name]);
    return made;
}
