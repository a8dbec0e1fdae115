#include "Import/Schema/Literal/SchemaOutline.h"

#include <algorithm>

namespace {

constexpr std::array<std::string_view, 2> kPrefixes{"xsd", "xs"};
constexpr std::array<std::string_view, 3> kTagNames{"element", "attribute", "complexType"};

struct QualifiedTag
{
    std::size_t prefix;
    SchemaOutline::Tag tag;
};

std::optional<QualifiedTag> tagOf(XmlName name)
{
    if (!name.prefix)
        return std::nullopt;
    const auto prefix = std::find(kPrefixes.begin(), kPrefixes.end(), name.prefix);
    const auto tag = std::find(kTagNames.begin(), kTagNames.end(), name.local);
    if (prefix == kPrefixes.end() || tag == kTagNames.end())
        return std::nullopt;
    return QualifiedTag{static_cast<std::size_t>(prefix - kPrefixes.begin()),
                        static_cast<SchemaOutline::Tag>(tag - kTagNames.begin())};
}

bool isCalled(XmlName name, std::string_view unprefixed)
{
    return !name.prefix && name.local == unprefixed;
}

/// True for "unbounded" and for a text that begins with a decimal integer greater than 1, of any length.
bool isMany(std::string_view maxOccurs)
{
    if (maxOccurs == "unbounded")
        return true;
    maxOccurs.remove_prefix(std::min(maxOccurs.find_first_not_of(kWhitespace), maxOccurs.size()));
    if (maxOccurs.starts_with('+'))
        maxOccurs.remove_prefix(1);
    maxOccurs = maxOccurs.substr(0, maxOccurs.find_first_not_of("0123456789"));
    maxOccurs.remove_prefix(std::min(maxOccurs.find_first_not_of('0'), maxOccurs.size()));
    return maxOccurs.size() > 1 || (maxOccurs.size() == 1 && maxOccurs != "1");
}

} // namespace

SchemaOutline::SchemaOutline(std::uint32_t file) : file(file)
{
    entries.emplace_back();
}

void SchemaOutline::startElement(XmlName name, XmlAttributes attributes)
{
    if (open.empty()) {
        startRoot(attributes);
        return;
    }
    const auto qualified = tagOf(name);
    if (!qualified) {
        if (open.size() == 1)
            noteLocation(name, attributes);
        open.push_back({kNone});
        return;
    }
    const Index place = enter(qualified->tag, attributes);
    places[qualified->prefix][qualified->tag].push_back(place);
    open.push_back({place});
}

void SchemaOutline::endElement()
{
    if (open.back().place != kNone)
        entries[open.back().place].end = static_cast<Index>(entries.size());
    open.pop_back();
}

void SchemaOutline::startRoot(XmlAttributes attributes)
{
    for (std::size_t i = 0; i < attributes.size(); ++i)
        isTargeted |= isCalled(attributes[i].name, "targetNamespace");
    open.push_back({kRoot});
}

/// Any prefix will do: which one a document binds to XML Schema is its own affair, and nothing else has these names at
/// the top of a schema.
void SchemaOutline::noteLocation(XmlName name, XmlAttributes attributes)
{
    const std::string_view local = name.local;
    if (local != "include" && local != "import" && local != "redefine")
        return;
    for (std::size_t i = 0; i < attributes.size(); ++i)
        if (isCalled(attributes[i].name, "schemaLocation"))
            schemaLocations.push_back({texts.keep(attributes[i].value), line});
}

/// Links a declaration with its parent and its siblings.
SchemaOutline::Index SchemaOutline::enter(Tag tag, XmlAttributes attributes)
{
    const auto place = static_cast<Index>(entries.size());
    Entry& entry = entries.emplace_back();
    entry.declaration = readDeclaration(attributes);
    entry.declaration.line = line;
    entry.tag = tag;
    Level& parent = open.back();
    Index& last = parent.lastChild[tag];
    if (last != kNone)
        entries[last].nextSibling = place;
    else if (parent.place != kNone)
        entries[parent.place].firstChild[tag] = place;
    last = place;
    return place;
}

/// Names become names of types and folders, so they have the same bound as those of the document itself.
std::string_view SchemaOutline::keepName(std::string_view name)
{
    if (name.size() > kMaxXmlName)
        throw XmlRefusal{"A declared name has more than 4,096 bytes, which is the bound"};
    return texts.keep({name, SchemaDeclaration::kMark});
}

SchemaDeclaration SchemaOutline::readDeclaration(XmlAttributes attributes)
{
    SchemaDeclaration out;
    std::string_view reference = out.nameAndMark;
    out.hasAttributes = attributes.size() > 0;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const auto [name, value] = attributes[i];
        if (isCalled(name, "name")) {
            out.nameAndMark = keepName(value);
        } else if (isCalled(name, "type")) {
            out.hasType = true;
            out.type = texts.keep(value);
        } else if (isCalled(name, "ref")) {
            reference = keepName(value);
        } else if (isCalled(name, "maxOccurs")) {
            out.repeats = isMany(value);
        }
    }
    out.isReference = out.name().empty();
    if (out.isReference)
        out.nameAndMark = reference;
    // "REF" is how the importer marks a declaration that is read through `ref`, so one of that name counts as such.
    if (!out.hasType && !out.isReference && out.name() != "REF")
        out.type = "AnonymousType";
    return out;
}

SchemaOutline::Index SchemaOutline::getNode(Index from, Tag tag) const
{
    for (const auto& byTag : places) {
        const std::vector<Index>& all = byTag[tag];
        const auto first = std::upper_bound(all.begin(), all.end(), from);
        if (first != all.end() && *first < entries[from].end)
            return *first;
    }
    return kNone;
}

const std::vector<SchemaOutline::Index>& SchemaOutline::mainTypes() const
{
    return places[0][complexType].empty() ? places[1][complexType] : places[0][complexType];
}

bool SchemaOutline::holdsTypeNamed(std::string_view name) const
{
    if (!typeNames) {
        typeNames.emplace();
        for (const Index place : mainTypes())
            typeNames->insert(entries[place].declaration.isReference ? "" : entries[place].declaration.name());
    }
    return typeNames->contains(name);
}

void SchemaOutline::reportUnread(SourceReport& report) const
{
    for (const Entry& entry : entries)
        if (entry.tag != complexType && !entry.isRead)
            report.add(SourceReport::declarationPassedOver, {file, entry.declaration.line}, entry.declaration.name());
}

void SchemaOutline::keepTextsOnly()
{
    entries = std::vector<Entry>(); // not {}, which would keep the room
    places = decltype(places)();
    typeNames.reset();
}
