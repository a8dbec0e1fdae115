#include "Import/Schema/Full/SchemaReader.h"

#include <algorithm>
#include <array>

namespace {

struct TagName
{
    std::string_view name;
    SchemaTag tag;
};

// The most frequent ones first.
constexpr TagName kTags[] = {
    {"element", SchemaTag::element},
    {"attribute", SchemaTag::attribute},
    {"enumeration", SchemaTag::enumeration},
    {"sequence", SchemaTag::sequence},
    {"complexType", SchemaTag::complexType},
    {"restriction", SchemaTag::restriction},
    {"simpleType", SchemaTag::simpleType},
    {"extension", SchemaTag::extension},
    {"complexContent", SchemaTag::complexContent},
    {"simpleContent", SchemaTag::simpleContent},
    {"choice", SchemaTag::choice},
    {"all", SchemaTag::all},
    {"group", SchemaTag::group},
    {"attributeGroup", SchemaTag::attributeGroup},
    {"any", SchemaTag::any},
    {"anyAttribute", SchemaTag::anyAttribute},
    {"union", SchemaTag::unionOf},
    {"list", SchemaTag::list},
    {"import", SchemaTag::import},
    {"include", SchemaTag::include},
    {"redefine", SchemaTag::redefine},
    {"override", SchemaTag::redefine}, // of XML Schema 1.1: the same to a type
    {"schema", SchemaTag::schema},
};

constexpr std::string_view kFacets[] = {"length",       "minLength",    "maxLength",     "pattern",
                                        "whiteSpace",   "maxInclusive", "maxExclusive",  "minInclusive",
                                        "minExclusive", "totalDigits",  "fractionDigits"};
constexpr std::string_view kConstraints[] = {"unique", "key", "keyref"};

constexpr std::size_t kLongestDescription = 255;

SchemaTag tagOf(std::string_view name)
{
    const auto known =
        std::find_if(std::begin(kTags), std::end(kTags), [name](const TagName& t) { return t.name == name; });
    return known == std::end(kTags) ? SchemaTag::none : known->tag;
}

template <std::size_t N>
bool isOneOf(const std::string_view (&names)[N], std::string_view name)
{
    return std::find(names, names + N, name) != names + N;
}

bool isTrue(std::string_view value)
{
    value = trimmed(value);
    return value == "true" || value == "1";
}

/// 0, 1, or 2 for more often; what makes no sense counts as 1.
std::uint8_t occursOf(std::string_view value)
{
    value = trimmed(value);
    if (value == "unbounded")
        return 2;
    if (value.empty() || value.find_first_not_of("0123456789") != std::string_view::npos)
        return 1;
    value.remove_prefix(std::min(value.find_first_not_of('0'), value.size()));
    if (value.empty())
        return 0;
    return value == "1" ? 1 : 2;
}

/// Appends `text` with each run of white space as one space, as long as there is room for it.
void appendCollapsed(CString& out, std::string_view text)
{
    constexpr std::size_t longestCharacter = 4;
    for (std::size_t i = 0; i < text.size() && out.size() <= longestCharacter * kLongestDescription; ++i) {
        if (kWhitespace.find(text[i]) == std::string_view::npos)
            out += text[i];
        else if (!out.empty() && out.back() != ' ')
            out += ' ';
    }
}

/// The first characters of a text in UTF-8.
std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    std::size_t at = 0;
    while (at < text.size() && (!isFirstByte(text[at]) || count-- > 0))
        ++at;
    return text.substr(0, at);
}

} // namespace

SchemaReader::SchemaReader(SchemaTree& tree) :
    tree(tree), document(static_cast<std::uint32_t>(tree.documents.size() - 1))
{}

void SchemaReader::scope(const XmlScope& scope)
{
    if (skipped > 0 || documented > 0)
        return;
    shadowedBefore = shadowed.size();
    for (std::size_t i = 0; i < scope.count; ++i) {
        const auto* prefix = reinterpret_cast<const char*>(scope.declarations[2 * i]);
        const auto* uri = reinterpret_cast<const char*>(scope.declarations[2 * i + 1]);
        const NameTable::Id id = tree.names.intern(prefix ? prefix : "");
        if (id >= spaces.size())
            spaces.resize(id + 1, kUndeclared);
        shadowed.push_back({id, spaces[id]});
        spaces[id] = tree.names.intern(trimmed(uri ? uri : ""));
    }
    if (scope.uri != lastUri) // nearly never
        isOfSchema = scope.uri && SchemaTree::isSchemaLanguage(tree.names.intern(scope.uri));
    lastUri = scope.uri;
    line = scope.line;
}

void SchemaReader::startElement(XmlName name, XmlAttributes attributes)
{
    if (documented > 0) {
        ++documented;
        return;
    }
    if (skipped > 0) {
        ++skipped;
        return;
    }
    const SchemaTag tag = isOfSchema ? tagOf(name.local) : SchemaTag::none;
    if (tag != SchemaTag::none && open.empty() == (tag == SchemaTag::schema) && (open.empty() || open.back().node != 0))
        enter(tag, attributes);
    else
        startOther(isOfSchema ? name.local : std::string_view());
}

void SchemaReader::enter(SchemaTag tag, XmlAttributes attributes)
{
    const auto place = static_cast<Index>(tree.nodes.size());
    SchemaNode node;
    node.tag = tag;
    node.line = static_cast<std::uint32_t>(line);
    node.document = document;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const auto [name, value] = attributes[i];
        if (name.prefix)
            continue;
        if (tag == SchemaTag::schema)
            readRootAttribute(name.local, value);
        else
            readAttribute(node, name.local, value);
    }
    if (open.empty()) {
        tree.documents[document].root = place;
    } else {
        Level& parent = open.back();
        node.parent = parent.node;
        (parent.lastChild == 0 ? tree.nodes[parent.node].firstChild : tree.nodes[parent.lastChild].next) = place;
        parent.lastChild = place;
    }
    tree.nodes.push_back(node);
    open.push_back({place, 0, shadowedBefore, false});
}

/// What is no node: annotations are looked into for the first documentation of the element around them.
void SchemaReader::startOther(std::string_view tag)
{
    if (tag == "annotation" && !open.empty() && open.back().node != 0) {
        open.push_back({0, open.back().node, shadowedBefore, true});
    } else if (tag == "documentation" && !open.empty() && open.back().isAnnotation) {
        documentation.clear();
        documented = 1;
    } else {
        counts.facets += isOneOf(kFacets, tag);
        counts.constraints += isOneOf(kConstraints, tag);
        skipped = 1;
    }
    if (skipped > 0 || documented > 0)
        leaveScope(shadowedBefore); // nothing in there is resolved
}

void SchemaReader::endElement()
{
    if (documented > 0) {
        if (--documented == 0)
            keepDocumentation();
    } else if (skipped > 0) {
        --skipped;
    } else {
        leaveScope(open.back().shadowed);
        open.pop_back();
    }
}

void SchemaReader::leaveScope(std::size_t before)
{
    for (; shadowed.size() > before; shadowed.pop_back())
        spaces[shadowed.back().prefix] = shadowed.back().space;
}

void SchemaReader::text(std::string_view text)
{
    if (documented > 0)
        appendCollapsed(documentation, text);
}

void SchemaReader::keepDocumentation()
{
    SchemaNode& node = tree.nodes[open.back().lastChild];
    const std::string_view said = trimmed(firstCharacters(documentation, kLongestDescription));
    if (said.empty() || node.documentation != 0)
        return;
    node.documentation = static_cast<std::uint32_t>(tree.documentations.size());
    tree.documentations.push_back(tree.texts.keep(said));
}

void SchemaReader::readRootAttribute(std::string_view name, std::string_view value)
{
    SchemaDocument& root = tree.documents[document];
    value = trimmed(value);
    if (name == "targetNamespace") {
        root.space = tree.names.intern(value);
        root.hasTarget = !value.empty();
    } else if (name == "elementFormDefault") {
        root.elementsQualified = value == "qualified";
    } else if (name == "attributeFormDefault") {
        root.attributesQualified = value == "qualified";
    }
}

void SchemaReader::readAttribute(SchemaNode& node, std::string_view name, std::string_view value)
{
    const auto set = [&node](bool on, SchemaNode::Flags flag) {
        node.flags = static_cast<std::uint16_t>(node.flags | (on ? flag : 0));
    };
    if (name == "name") {
        node.name = nameOf(trimmed(value));
    } else if (name == "schemaLocation") {
        node.name = tree.names.intern(trimmed(value));
    } else if (name == "value") {
        node.name = tree.names.intern(value);
    } else if (name == "type" || name == "base" || name == "itemType" || name == "ref") {
        node.reference = resolve(value);
        set(name == "ref" && node.reference.local != 0, SchemaNode::isReference);
    } else if (name == "maxOccurs") {
        node.occurs = occursOf(value);
    } else if (name == "memberTypes" || name == "substitutionGroup") {
        node.list = readList(value);
    } else if (name == "use") {
        set(trimmed(value) == "prohibited", SchemaNode::isProhibited);
    } else if (name == "mixed") {
        set(isTrue(value), SchemaNode::isMixed);
        set(!value.empty(), SchemaNode::saysMixed);
    } else if (name == "abstract") {
        set(isTrue(value), SchemaNode::isAbstract);
    } else if (name == "form") {
        set(true, SchemaNode::saysForm);
        set(trimmed(value) == "qualified", SchemaNode::isQualified);
    } else if (name == "nillable") {
        counts.nillable += isTrue(value);
    } else if (name == "default" || name == "fixed") {
        ++counts.defaults;
    }
}

std::uint32_t SchemaReader::readList(std::string_view value)
{
    const auto first = static_cast<std::uint32_t>(tree.listed.size());
    for (value = trimmed(value); !value.empty(); value = trimmed(value)) {
        const std::size_t end = std::min(value.find_first_of(kWhitespace), value.size());
        if (const SchemaName name = resolve(value.substr(0, end)); name.local != 0)
            tree.listed.push_back(name);
        value.remove_prefix(end);
    }
    tree.listed.push_back({});
    return first;
}

/// A name by number. One that no document can carry is noted, and none.
NameTable::Id SchemaReader::nameOf(std::string_view text)
{
    const NameTable::Id name = tree.names.intern(text);
    if (name == 0 || isXmlName(text))
        return name;
    impossibleNames.push_back({static_cast<Index>(tree.nodes.size()), name});
    return 0;
}

/// What a QName stands for where it is written. One with a prefix that nobody declares stands for nothing there is.
SchemaName SchemaReader::resolve(std::string_view qualified)
{
    qualified = trimmed(qualified);
    const std::size_t colon = qualified.rfind(':');
    const std::string_view prefix = colon == std::string_view::npos ? "" : qualified.substr(0, colon);
    const NameTable::Id local = nameOf(qualified.substr(colon == std::string_view::npos ? 0 : colon + 1));
    const NameTable::Id id = tree.names.intern(prefix);
    const NameTable::Id space = id < spaces.size() ? spaces[id] : kUndeclared;
    if (space != kUndeclared)
        return {space, local};
    if (prefix == "xml")
        return {SchemaTree::kXmlNamespace, local};
    return {prefix.empty() ? 0 : kUndeclared, local};
}
