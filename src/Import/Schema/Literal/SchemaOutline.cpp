#include "Import/Schema/Literal/SchemaOutline.h"

#include "Xml/XmlLimits.h"

#include <algorithm>

// The outline is filled in one pass. Besides the entries, it keeps the indexes of the declarations of each prefix and
// tag, in ascending order. So a binary search for an entry's index finds the next declaration, which is a descendant if
// it comes before the entry's end.
//
// Statements that the tables have no place for, although they affect types, are reported here, because later steps
// don't have them.

namespace {

constexpr std::array<std::string_view, 2> kPrefixes{"xsd", "xs"};
constexpr std::size_t kMaxNameLevels = 100; // levels to look up for a name; real schemas don't nest deeper

std::optional<SchemaOutline::Tag> declarationOf(SchemaTag tag)
{
    switch (tag) {
    case SchemaTag::element:
        return SchemaOutline::element;
    case SchemaTag::attribute:
        return SchemaOutline::attribute;
    case SchemaTag::complexType:
        return SchemaOutline::complexType;
    default:
        return std::nullopt;
    }
}

// Returns the index of a prefix in kPrefixes; its size for any other.
std::size_t prefixOf(XmlName name)
{
    const auto* const found = name.prefix ? std::ranges::find(kPrefixes, name.prefix) : kPrefixes.end();
    return static_cast<std::size_t>(found - kPrefixes.begin());
}

bool isAnyType(std::string_view name)
{
    return name.substr(name.find(':') + 1) == "anyType";
}

// Returns true for "unbounded", and for a text that begins with a decimal integer greater than 1, of any length. White
// space, a plus sign and zeros may precede it, and anything may follow.
bool mayRepeat(std::string_view maxOccurs)
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

SchemaOutline::SchemaOutline(SourceReport& report, std::uint32_t file, SchemaKinds& kinds) :
    statements(report, file, true), kinds(kinds), file(file), holds(report.isHolding())
{
    entries.emplace_back();
}

// Collects the prefixes that documents bind to the language. The reading itself only knows xs and xsd, but the report
// must not call a built-in type undeclared.
void SchemaOutline::notePrefixes(const XmlScope& scope)
{
    for (std::size_t i = 0; i < scope.count; ++i)
        if (schemaEditionOf(scope[i].uri) != SchemaEdition::none)
            kinds.addLanguagePrefix(scope[i].prefix);
}

// Returns the number of the component that begins with a start tag. SchemaStatements only uses it at the top.
SourceReport::Component SchemaOutline::componentOf(XmlName name, XmlAttributes attributes) const
{
    if (!holds || open.size() != 1)
        return 0;
    const bool isShared =
        name.local == std::string_view("simpleType") || !attributes.valueOf("substitutionGroup").empty();
    return isShared ? kShared : componentOf(attributes.valueOf("name"));
}

void SchemaOutline::startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope)
{
    notePrefixes(scope);
    const SchemaTag tag = statements.enter(name, attributes, scope, componentOf(name, attributes));
    if (open.empty()) {
        isTargeted = std::ranges::count(statements.attributes(), SchemaAttribute::targetNamespace,
                                        &SchemaStatements::Attribute::name) > 0;
        open.push_back({kRoot});
        return;
    }
    Level level;
    const auto declaration = declarationOf(tag);
    const std::size_t prefix = declaration ? prefixOf(name) : kPrefixes.size();
    if (prefix < kPrefixes.size()) {
        level.place = enter(*declaration, attributes);
        places[prefix][*declaration].push_back(level.place);
    } else if (open.size() == 1 && tag != SchemaTag::none) {
        noteLocation(name.local);
    }
    if (!statements.isIgnored()) {
        if (level.place != kNone)
            noteDeclaration(tag);
        else
            noteSkipped(name, tag, level);
    }
    open.push_back(level);
}

void SchemaOutline::endElement()
{
    statements.leave();
    if (open.back().place != kNone)
        entries[open.back().place].end = static_cast<Index>(entries.size());
    open.pop_back();
}

// Reports statements that the tables have no place for although they affect types, and keeps the properties of groups
// and simple types that concern the declarations in them.
void SchemaOutline::noteSkipped(XmlName name, SchemaTag tag, Level& level)
{
    const std::string_view base = statements.valueOf(SchemaAttribute::base);
    const std::string_view reference = statements.valueOf(SchemaAttribute::ref);
    switch (tag) {
    case SchemaTag::element:
    case SchemaTag::attribute:
    case SchemaTag::complexType:
        return statements.addFinding(SourceReport::declarationSkipped, nameAround());
    case SchemaTag::redefine:
        if (name.local == std::string_view("override"))
            statements.addFinding(SourceReport::declarationSkipped,
                                  CString(statements.valueOf(SchemaAttribute::schemaLocation)));
        return;
    case SchemaTag::sequence:
    case SchemaTag::choice:
    case SchemaTag::all:
        level.isChoice = tag == SchemaTag::choice;
        level.isRepeated = statements.mayRepeat() || open.back().isRepeated;
        return;
    case SchemaTag::group:
    case SchemaTag::attributeGroup: // a declaration alone has no effect
        if (!reference.empty())
            statements.addFinding(SourceReport::groupSkipped, CString(reference));
        return;
    case SchemaTag::extension:
        // Text with attributes remains text, and the attributes are reported separately.
        if (kinds.builtInKindOf(base) != SchemaKinds::text || isAnyType(base))
            statements.addFinding(SourceReport::extensionSkipped, CString(base));
        return;
    case SchemaTag::restriction:
        // A restriction of anyType is the long form of any complex type (XML Schema Part 1, 3.4.2), so nothing is lost.
        if (statements.holder() == SchemaTag::simpleRestriction)
            noteSimpleType(tag, level);
        else if (!isAnyType(base))
            statements.addFinding(SourceReport::restrictionSkipped, CString(base));
        return;
    case SchemaTag::complexContent:
        if (isMixed())
            statements.addFinding(SourceReport::textSkipped, nameAround());
        return;
    case SchemaTag::any:
        return statements.addFinding(SourceReport::anyElement, nameAround());
    case SchemaTag::anyAttribute:
        return statements.addFinding(SourceReport::anyAttribute, nameAround());
    default:
        return noteSimpleType(tag, level);
    }
}

// Adds the properties of the simple type around a statement to `kinds`. The level of a restriction or union has the
// same type as the level around it.
void SchemaOutline::noteSimpleType(SchemaTag tag, Level& level)
{
    const Level& around = open.back();
    switch (tag) {
    case SchemaTag::simpleType:
        level.simpleType = kinds.add(statements.valueOf(SchemaAttribute::name));
        if (around.simpleType != SchemaKinds::kNone)
            kinds.addPart(around.simpleType, level.simpleType);
        else if (around.place != kNone)
            entries[around.place].declaration.simpleType = level.simpleType;
        return;
    case SchemaTag::restriction:
        level.simpleType = around.simpleType;
        if (const std::string_view base = trimmed(statements.valueOf(SchemaAttribute::base)); !base.empty()) {
            kinds.addPart(level.simpleType, base);
            if (kinds.isBuiltInList(base))
                statements.addFinding(SourceReport::listType, nameAround());
        }
        return;
    case SchemaTag::unionOf:
        level.simpleType = around.simpleType;
        return forEachName(statements.valueOf(SchemaAttribute::memberTypes),
                           [&](std::string_view member) { kinds.addPart(level.simpleType, member); });
    case SchemaTag::list:
        kinds.setList(around.simpleType);
        return statements.addFinding(SourceReport::listType, nameAround());
    case SchemaTag::enumeration:
        if (around.simpleType != SchemaKinds::kNone)
            kinds.setListed(around.simpleType);
        return;
    default:
        return;
    }
}

// Reports further properties of a declaration that the tables have no place for. The declaration is the last entry.
void SchemaOutline::noteDeclaration(SchemaTag tag)
{
    const SchemaDeclaration& declaration = entries.back().declaration;
    if (!declaration.isReference && !isXmlName(declaration.name()))
        statements.addFinding(SourceReport::impossibleName, CString(declaration.name()));
    if (!statements.mayOccur())
        statements.addFinding(SourceReport::elementNotAllowed, nameAround());
    if (kinds.isBuiltInList(declaration.type))
        statements.addFinding(SourceReport::listType, nameAround());
    if (declaration.isAbstract)
        statements.addFinding(SourceReport::abstractType, nameAround());
    if (tag == SchemaTag::complexType && isMixed())
        statements.addFinding(SourceReport::textSkipped, nameAround());
    if (statements.has(SchemaAttribute::substitutionGroup))
        statements.addFinding(SourceReport::substitutionSkipped, nameAround());
}

bool SchemaOutline::isMixed() const
{
    return statements.has(SchemaAttribute::mixed) &&
           SchemaStatements::isTrue(statements.valueOf(SchemaAttribute::mixed));
}

// Returns the name of the current statement, else that of the nearest enclosing declaration.
CString SchemaOutline::nameAround() const
{
    for (const SchemaAttribute attribute : {SchemaAttribute::name, SchemaAttribute::ref})
        if (const std::string_view name = statements.valueOf(attribute); !name.empty())
            return CString(name);
    for (std::size_t i = open.size(); i > 0 && i + kMaxNameLevels > open.size(); --i)
        if (const Index place = open[i - 1].place; place != kNone && !entries[place].declaration.name().empty())
            return CString(entries[place].declaration.name());
    return {};
}

// Keeps the location of a document.
void SchemaOutline::noteLocation(std::string_view statement)
{
    if (statement != "include" && statement != "import" && statement != "redefine")
        return;
    for (const auto& [name, value, isAllowed] : statements.attributes())
        if (name == SchemaAttribute::schemaLocation)
            schemaLocations.push_back({texts.keep(value), statements.place()});
}

// Adds a declaration, and links it with its parent and siblings.
SchemaOutline::Index SchemaOutline::enter(Tag tag, XmlAttributes attributes)
{
    const auto place = static_cast<Index>(entries.size());
    Entry& entry = entries.emplace_back();
    entry.declaration = readDeclaration(attributes);
    entry.declaration.line = statements.place().line;
    entry.declaration.column = statements.place().column;
    entry.tag = tag;
    entry.isRead = statements.isIgnored(); // ignored statements have been reported
    Level& parent = open.back();
    entry.declaration.isSingle = parent.isChoice || tag == attribute;
    entry.declaration.isInRepeated = parent.isRepeated;
    Index& last = parent.lastChild[tag];
    if (last != kNone)
        entries[last].nextSibling = place;
    else if (parent.place != kNone)
        entries[parent.place].firstChild[tag] = place;
    last = place;
    return place;
}

// Names become names of types and folders, so they have the same bound as names in XML. The mark follows each name in
// memory, so that the name with the mark is a view, too.
std::string_view SchemaOutline::keepName(std::string_view name)
{
    if (name.size() > kMaxXmlName)
        throw XmlRefusal{"A declared name has more than 4,096 bytes, which is the limit"};
    return texts.keep({name, SchemaDeclaration::kMark});
}

// Reads the attributes that the literal reading knows. Those that the language doesn't allow there are reported, but
// take effect, except `abstract`.
SchemaDeclaration SchemaOutline::readDeclaration(XmlAttributes attributes)
{
    SchemaDeclaration out;
    std::string_view reference = out.nameAndMark;
    out.hasAttributes = attributes.size() > 0;
    for (const auto& [name, value, isAllowed] : statements.attributes())
        switch (name) {
        case SchemaAttribute::name:
            out.nameAndMark = keepName(value);
            break;
        case SchemaAttribute::type:
            out.hasType = true;
            out.type = texts.keep(value);
            break;
        case SchemaAttribute::ref:
            reference = keepName(value);
            break;
        case SchemaAttribute::maxOccurs:
            out.repeats = mayRepeat(value);
            break;
        case SchemaAttribute::abstract:
            out.isAbstract = isAllowed && SchemaStatements::isTrue(value);
            break;
        default:
            break;
        }
    out.isReference = out.name().empty();
    if (out.isReference)
        out.nameAndMark = reference;
    // The importer marks a declaration that is read through `ref` by "REF", so a declaration of that name counts as
    // one.
    if (!out.hasType && !out.isReference && out.name() != "REF")
        out.type = SchemaDeclaration::kAnonymousType;
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

// Returns the complex types with the prefix xsd; in a document without any, those with xs.
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

SchemaOutline::Index SchemaOutline::typeOf(Index declaration) const
{
    const SchemaDeclaration& element = entries[declaration].declaration;
    if (!element.hasType)
        return getChildNode(declaration, complexType);
    Index type = getChildNode(kRoot, complexType);
    while (type != kNone && entries[type].declaration.name() != element.type)
        type = getNextSibling(type);
    return type;
}

void SchemaOutline::reportUnread(SourceReport& report) const
{
    Index next = kRoot + 1; // the next one at the top
    for (Index at = next; at < entries.size(); ++at) {
        if (at == next) {
            enterComponent(report, at);
            next = endOf(at);
        }
        if (tagOf(at) != complexType && !entries[at].isRead)
            report.add(SourceReport::declarationSkipped, placeOf(at), entries[at].declaration.name());
    }
    report.enter(0);
}

void SchemaOutline::keepTextsOnly()
{
    entries = decltype(entries)(); // not {}, which would keep the room
    places = decltype(places)();
    typeNames.reset();
}
