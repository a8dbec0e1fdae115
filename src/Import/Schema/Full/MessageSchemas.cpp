#include "Import/Schema/Full/MessageSchemas.h"

#include <utility>

// All schemas are loaded before the first one is read, because they may refer to each other, and each component is read
// once. Their elements become candidates without a source; addMain() then gives those of messages a source. A
// description doesn't say which element is the root of a message. So it is the one with the name of the message, in any
// letter case, because one schema often serves several messages. If there is none, each element of the schema may be
// the root.

namespace {

constexpr std::size_t kMaxComponents = 1'000'000;

} // namespace

void MessageSchemas::read(SourceTypes& types, const std::vector<CString>& roots)
{
    if (schemas.empty())
        return;
    if (!roots.empty())
        report.hold();
    std::vector<SchemaSet::Source> sources;
    std::vector<std::pair<const Schema*, std::uint32_t>> messages; // with their documents
    std::unordered_map<std::uint32_t, Elements> elements;          // by document
    for (const Schema& schema : schemas)
        if (const auto document = set.load(schema.text)) {
            if (elements.try_emplace(*document).second)
                sources.push_back({*document, SourceTypes::kNone});
            if (schema.source != SourceTypes::kNone)
                messages.emplace_back(&schema, *document);
        }
    set.finish();
    std::size_t components = 0;
    for (auto& [document, found] : elements)
        found = elementsOf(document, components);
    if (!roots.empty())
        set.reportNotes(); // of the documents themselves
    const auto first = static_cast<SourceTypes::Index>(types.candidates.size());
    all.emplace(set, types);
    all->read(sources, roots, {});
    for (SourceTypes::Index i = first; i < types.candidates.size(); ++i)
        candidates.try_emplace(all->componentOf(i - first), i);
    for (const auto& [message, document] : messages)
        addMains(types, *message, elements[document]);
    if (roots.empty())
        return set.reportNotes();
    set.dropNotes();
    report.pause(false);
}

// Returns the elements of a document. Adds to the number of `components`, which is bounded, because many schemas may
// include the same one.
MessageSchemas::Elements MessageSchemas::elementsOf(std::uint32_t document, std::size_t& components) const
{
    Elements elements;
    const std::vector<Index> all = set.componentsOf(document);
    components += all.size();
    if (components > kMaxComponents)
        set.refuse(std::to_string(kMaxComponents) + " components in the schemas of messages");
    for (const Index at : all)
        if (tree[at].tag == SchemaTag::element) {
            elements.all.push_back(at);
            elements.byName.try_emplace(lowerAscii(tree.text(tree[at].name)), at);
        }
    return elements;
}

// Makes the elements that may be the root of a message candidates of its source. Those that nothing refers to become
// records, even if they are plain text, and are reported if there are several. A fragment in the reference to a schema
// names the root.
void MessageSchemas::addMains(SourceTypes& types, const Schema& message, Elements& elements)
{
    const std::string_view text = message.text.text;
    const bool hasFragment = message.text.isReference && text.find('#') != text.npos; // which names the root
    const auto named = elements.byName.find(
        lowerAscii(hasFragment ? text.substr(text.find_last_of("#/") + 1) : std::string_view(message.text.name)));
    if (named != elements.byName.end()) {
        types.recordOf(candidates.at(named->second));
        return addMain(types, named->second, message.source);
    }
    if (hasFragment)
        report.add(SourceReport::unresolvedReference, message.text.place, text);
    if (!elements.sources.insert(message.source).second)
        return;
    CString choice;
    int alternatives = 0;
    for (const Index element : elements.all) {
        if (!isReferred(element)) {
            types.recordOf(candidates.at(element));
            choice += (alternatives++ == 0 ? "" : " or ") + CString(tree.text(tree[element].name));
        }
        addMain(types, element, message.source);
    }
    if (alternatives > 1 && !report.isHolding()) // else the caller has chosen
        report.add(SourceReport::alternatives, message.text.place, choice);
}

// Returns whether another declaration refers to an element, or the element is a member of a substitution group. The
// first call collects the references of all documents; the 0 marks that it has.
bool MessageSchemas::isReferred(Index element)
{
    if (referred.empty()) {
        referred.insert(0);
        for (Index at = 1; at < tree.size(); ++at)
            if (tree[at].tag == SchemaTag::element && tree[at].is(SchemaNode::isReference))
                referred.insert(set.find(SchemaSet::element, tree.referenceOf(at), at));
    }
    return referred.contains(element) || tree[element].list != 0;
}

// Makes an element a candidate of a source. Several sources may have the same element; a candidate has one source, so
// further sources get a copy of it.
void MessageSchemas::addMain(SourceTypes& types, Index element, SourceTypes::Index source)
{
    if (!mains.emplace(element, source).second)
        return;
    const SourceTypes::Index candidate = candidates.at(element);
    SourceTypes::Candidate main = types.candidates[candidate];
    const bool isFirst = std::exchange(main.source, source) == SourceTypes::kNone;
    if (isFirst)
        types.candidates[candidate] = main;
    else
        types.addCandidate(main);
}

void MessageSchemas::want(SourceTypes::Index candidate)
{
    for (const auto& [component, known] : candidates)
        if (known == candidate)
            wanted.push_back(component);
}

void MessageSchemas::readAlone(SourceTypes& alone)
{
    if (!all)
        return;
    set.recordReached(false);
    SchemaTypes(set, alone).readAlone(wanted);
    report.release([this](SourceReport::Component component) { return set.isReached(component); });
    set.reportNotes();
}
