// DTDReader: makes the types, after all DTDs have been read.
#include "Import/Dtd/DTDReader.h"

#include <unordered_map>

// Adds all records before the first field, because a field names the record of its element, which may be declared
// later. An element that is only referred to becomes text and is reported. One that only has attributes can't be in a
// document, so it is a detail. Declared elements come in the order of declaration, which decides between equal
// candidates for the main type; the others follow.
void DTDReader::finish(std::span<const Index> sources, std::span<const CString> roots)
{
    if (omitsTags)
        matchWithoutCase();
    const std::vector<bool> reached = findReached(roots);
    report.release([&](SourceReport::Component component) { return isReached(component, reached); });
    for (Element& element : elements)
        element.source = sources[element.source];
    std::vector<Index> order = declared;
    for (const Element& element : elements)
        if (!element.isDeclared && element.isName) {
            if (reached[element.index])
                report.add(element.isReferred ? SourceReport::unresolvedReference : SourceReport::elementNotAllowed,
                           element.place, element.name);
            order.push_back(element.index);
        }
    for (const Index index : order) {
        cancelPoint.pass();
        Element& element = elements[index];
        if (element.contentCount > 0 || element.firstAttribute != SourceTypes::kNone)
            element.record = types.addRecord({element.name, {}, element.place});
        if (element.isDeclared)
            types.addCandidate(
                {.name = element.name, .type = typeOf(element), .place = element.place, .source = element.source});
    }
    std::vector<SourceTypes::Field> fields;
    for (const Index index : order)
        if (elements[index].record != SourceTypes::kNone) {
            makeFields(elements[index], fields);
            types.setFields(elements[index].record, fields);
        }
}

// Names of elements have no case in SGML (NAMECASE GENERAL YES in its reference concrete syntax, ISO 8879, figure 7).
// So one that nothing declares means the declared element that differs by case only, which also gets its attributes.
void DTDReader::matchWithoutCase()
{
    std::unordered_map<CString, Index> byName;
    for (const Index index : declared)
        byName.emplace(lowerAscii(elements[index].name), index);
    std::vector<Index> meant(elements.size());
    for (Element& element : elements) {
        const auto found = element.isDeclared ? byName.end() : byName.find(lowerAscii(element.name));
        meant[element.index] = found == byName.end() ? element.index : found->second;
        if (found == byName.end())
            continue;
        element.isName = false; // makes no type
        for (Index at = element.firstAttribute; at != SourceTypes::kNone;) {
            const Attribute attribute = attributes[at];
            addAttribute(elements[found->second], attribute.key.name, attribute.type);
            at = attribute.next;
        }
    }
    for (ContentModel::Entry& entry : contents)
        entry.name = meant[entry.name];
}

// Returns for each element whether a root contains it, directly or indirectly; true for all if there are no roots. A
// root that the DTD doesn't mention is skipped here; RootNames::find() refuses it.
std::vector<bool> DTDReader::findReached(std::span<const CString> roots) const
{
    std::vector<bool> isReached(elements.size(), roots.empty());
    std::vector<Index> waiting;
    const auto reach = [&](Index element) {
        if (!isReached[element])
            waiting.push_back(element);
        isReached[element] = true;
    };
    for (const CString& root : roots)
        if (const Element* const element = elementsByName.find(root))
            reach(element->index);
    while (!waiting.empty()) {
        const Element& element = elements[waiting.back()];
        waiting.pop_back();
        for (Index i = 0; i < element.contentCount; ++i)
            reach(contents[element.firstContent + i].name);
    }
    return isReached;
}

// Returns whether one of a component's elements is among the reached ones.
bool DTDReader::isReached(SourceReport::Component component, const std::vector<bool>& reached) const
{
    for (std::size_t i = component - 1; !components[i].empty(); ++i)
        if (const Element* const element = elementsByName.find(components[i]); element && reached[element->index])
            return true;
    return false;
}

SourceTypes::Type DTDReader::typeOf(const Element& element) const
{
    if (element.record == SourceTypes::kNone)
        return {};
    return {SourceTypes::kindRecord, element.record};
}

// Makes the fields of a record: text, children, attributes. `fields` is a buffer whose memory is reused. Names of
// attributes are joined only here, because only records need them.
void DTDReader::makeFields(const Element& element, std::vector<SourceTypes::Field>& fields)
{
    fields.clear();
    if (element.holdsText)
        fields.push_back({"value", {}, {}, SourceTypes::roleValue});
    for (const ContentModel::Entry& entry : std::span(contents).subspan(element.firstContent, element.contentCount)) {
        cancelPoint.pass();
        const Element& child = elements[entry.name];
        fields.push_back({child.name, {}, typeOf(child), SourceTypes::roleElement, entry.repeats});
    }
    for (Index at = element.firstAttribute; at != SourceTypes::kNone; at = attributes[at].next) {
        const Attribute& attribute = attributes[at];
        fields.push_back(
            {types.join(element.name, attribute.key.name), {}, attribute.type, SourceTypes::roleAttribute});
    }
}
