#include "Import/Schema/Full/SchemaReader.h"

#include "Import/Schema/SchemaConditions.h"

#include <algorithm>
#include <array>

// Each statement that affects types becomes a node, linked to its parent and its previous sibling. Prefixes are
// resolved while the tags are read, because their scope ends with the element. `spaces` has the current namespace of
// each prefix; a declaration saves the previous one in `shadowed` until the end tag. So resolving a name costs the same
// at any depth.

namespace {

constexpr std::size_t kMaxRanks = 8; // dimensions of nested arrays; further ones are dropped

// Returns whether documentation of such a statement describes a type, a field or a constant.
bool isDescribed(SchemaTag tag)
{
    return tag == SchemaTag::element || tag == SchemaTag::attribute || tag == SchemaTag::complexType ||
           tag == SchemaTag::simpleType || tag == SchemaTag::enumeration;
}

// The words of `block` and `blockDefault`, with the flags of nodes.
constexpr std::pair<std::string_view, SchemaNode::Flags> kBlocks[] = {{"substitution", SchemaNode::blocksSubstitution},
                                                                      {"extension", SchemaNode::blocksExtension},
                                                                      {"restriction", SchemaNode::blocksRestriction},
                                                                      {"#all", SchemaNode::blocksAll}};

} // namespace

SchemaReader::SchemaReader(SchemaTree& tree, SourceReport& report) :
    tree(tree), document(static_cast<std::uint32_t>(tree.documents.size() - 1)), holds(report.isHolding()),
    statements(report, tree.documents.back().file, false)
{}

// The namespaces of the root are kept for the names of main types, which may have a prefix.
void SchemaReader::bind(XmlNamespace declared)
{
    const NameTable::Id id = tree.names.intern(declared.prefix);
    if (id >= spaces.size())
        spaces.resize(id + 1, kUndeclared);
    shadowed.push_back({id, spaces[id]});
    spaces[id] = tree.names.intern(trimmed(declared.uri));
    if (open.empty())
        tree.documents[document].prefixes.emplace_back(id, spaces[id]);
}

// SchemaStatements gets every tag, even inside of skipped elements, because it also checks statements that make no
// nodes.
void SchemaReader::startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope)
{
    const std::size_t shadowedBefore = shadowed.size();
    const bool isRead = documented == 0 && skipped == 0;
    for (std::size_t i = 0; i < scope.count && isRead; ++i)
        bind(scope[i]);
    const SchemaTag tag = statements.enter(name, attributes, scope, holds ? static_cast<Index>(tree.size()) : 0,
                                           isRead && !open.empty() && isLeftOut(attributes));
    if (documented > 0) {
        ++documented;
        documentation.enter(name.local);
        return;
    }
    if (skipped > 0) {
        ++skipped;
        return;
    }
    const bool isNode = tag != SchemaTag::none && tag <= SchemaTag::alternative;
    // Only the root is a schema, and the parent of a node is a node.
    if (isNode && open.empty() == (tag == SchemaTag::schema) && (open.empty() || open.back().node != 0))
        enter(tag, name, shadowedBefore);
    else
        startOther(tag, shadowedBefore);
    if (isNode && tag == SchemaTag::attribute && !open.empty() && open.back().node + 1 == tree.nodes.size())
        makeArray(attributes);
}

// Returns whether a statement has a condition that isn't met.
bool SchemaReader::isLeftOut(XmlAttributes attributes)
{
    const auto isLanguagePrefix = [this](std::string_view prefix) {
        return SchemaTree::isSchemaLanguage(spaceOf(prefix));
    };
    for (std::size_t i = 0; i < attributes.size(); ++i)
        if (const auto [name, value] = attributes[i]; name.prefix && isVersioningNamespace(attributes.uriOf(i)))
            if (const auto isMet = isConditionMet(name.local, value, isLanguagePrefix); isMet && !*isMet)
                return true;
    return false;
}

// Reads an array of SOAP's encoding (https://www.w3.org/TR/SOAP/#_Toc478383522): the attribute wsdl:arrayType (WSDL
// 1.1, 2.2) gives the type of the items. The attribute becomes a repeated element with the name of the one that the
// content declares for the items, else "item". Both elements make a single field, like any two occurrences of one name.
void SchemaReader::makeArray(XmlAttributes attributes)
{
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const char* const uri = attributes.uriOf(i);
        if (attributes[i].name.local != std::string_view("arrayType") || !uri ||
            uri != std::string_view("http://schemas.xmlsoap.org/wsdl/"))
            continue;
        const std::string_view value = attributes[i].value;
        const std::size_t sizes = std::min(value.find('['), value.size());
        const auto ranks = static_cast<std::size_t>(std::ranges::count(value.substr(sizes), '['));
        if (ranks > kMaxRanks)
            statements.addFinding(SourceReport::cutShort,
                                  "more than " + std::to_string(kMaxRanks) + " arrays inside each other");
        SchemaNode item = tree.nodes.back();
        item.tag = SchemaTag::element;
        item.name = tree.names.intern("item");
        const Index group = tree.childOf(item.parent, SchemaTag::sequence, SchemaTag::all, SchemaTag::choice);
        if (const Index declared = group == 0 ? 0 : tree.childOf(group, SchemaTag::element); declared != 0)
            if (tree[declared].hasName())
                item.name = tree[declared].name;
        // The element has none of the attribute's other properties, such as its `ref` and `use`.
        item.reference = {};
        item.flags = 0;
        item.occurs = 2;
        tree.nodes.back() = item;
        for (std::size_t rank = 1; rank < std::min(ranks, kMaxRanks); ++rank)
            holdInLast(item.name);
        tree.nodes.back().reference = resolve(value.substr(0, sizes));
    }
}

// Gives the last element an anonymous type with one repeated element of that name, which then is the last node. An
// array of arrays has one such type for each further rank.
void SchemaReader::holdInLast(NameTable::Id name)
{
    for (const SchemaTag tag : {SchemaTag::complexType, SchemaTag::sequence, SchemaTag::element})
        tree.add(tag, document, statements.place(), static_cast<Index>(tree.size() - 1));
    tree.nodes.back().name = name;
    tree.nodes.back().occurs = 2;
}

void SchemaReader::enter(SchemaTag tag, XmlName name, std::size_t shadowedBefore)
{
    const Level around = open.empty() ? Level() : open.back();
    const Index place = tree.add(tag, document, statements.place(), around.node, around.lastChild);
    SchemaNode& node = tree.nodes[place];
    if (tag == SchemaTag::element || tag == SchemaTag::complexType)
        node.flags = tree.documents[document].blocks;
    else if (tag == SchemaTag::redefine && name.local == std::string_view("override"))
        node.flags = SchemaNode::isOverride;
    for (const SchemaStatements::Attribute& attribute : statements.attributes()) {
        if (!attribute.isAllowed)
            continue;
        if (tag == SchemaTag::schema)
            readRootAttribute(attribute);
        else
            readAttribute(node, attribute);
    }
    node.occurs = statements.mayRepeat() ? 2 : statements.mayOccur() ? 1 : 0;
    (open.empty() ? tree.documents[document].root : open.back().lastChild) = place;
    open.push_back({place, 0, shadowedBefore, false});
}

// Enters a statement that makes no node. An annotation is searched for the first documentation of its element.
void SchemaReader::startOther(SchemaTag tag, std::size_t shadowedBefore)
{
    if (tag == SchemaTag::annotation && !open.empty() && open.back().node != 0) {
        open.push_back({0, open.back().node, shadowedBefore, true});
    } else if (tag == SchemaTag::documentation && !open.empty() && open.back().isAnnotation) {
        documentation.begin();
        documented = 1;
    } else {
        skipped = 1;
    }
    if (skipped > 0 || documented > 0)
        leaveScope(shadowedBefore); // names inside aren't resolved
}

void SchemaReader::endElement()
{
    statements.leave();
    if (documented > 0) {
        if (--documented == 0)
            keepDocumentation();
        else
            documentation.leave();
    } else if (skipped > 0) {
        --skipped;
    } else {
        leaveScope(open.back().shadowed);
        open.pop_back();
    }
}

// Restores the namespaces of the prefixes that were declared since `shadowed` had the size `before`. Backwards, because
// inner elements may have declared a prefix again.
void SchemaReader::leaveScope(std::size_t before)
{
    for (; shadowed.size() > before; shadowed.pop_back())
        spaces[shadowed.back().prefix] = shadowed.back().space;
}

void SchemaReader::text(std::string_view text)
{
    if (documented > 0)
        documentation.text(text);
    else
        statements.text(text);
}

// Gives the documentation that ended to the node that it describes. Only the first one with text is kept; dropped or
// cut text is counted as a detail.
void SchemaReader::keepDocumentation()
{
    SchemaNode& node = tree.nodes[open.back().lastChild];
    const std::string_view words = documentation.query();
    const bool isWanted = isDescribed(node.tag) && node.documentation == 0;
    if (!words.empty() && (!isWanted || documentation.isCut()))
        statements.count(SourceReport::documentationCut);
    if (words.empty() || !isWanted)
        return;
    node.documentation = static_cast<std::uint32_t>(tree.documentations.size());
    tree.documentations.push_back(tree.texts.keep(words));
}

void SchemaReader::readRootAttribute(const SchemaStatements::Attribute& attribute)
{
    SchemaDocument& root = tree.documents[document];
    const std::string_view value = trimmed(attribute.value);
    if (attribute.name == SchemaAttribute::targetNamespace) {
        root.space = tree.names.intern(value);
        root.hasTarget = !value.empty();
    } else if (attribute.name == SchemaAttribute::elementFormDefault) {
        root.elementsQualified = value == "qualified";
    } else if (attribute.name == SchemaAttribute::attributeFormDefault) {
        root.attributesQualified = value == "qualified";
    } else if (attribute.name == SchemaAttribute::defaultAttributes) {
        root.defaultAttributes = resolve(value);
    } else if (attribute.name == SchemaAttribute::blockDefault) {
        root.blocks = readBlocks(value);
    }
}

// Stores the value of an attribute that affects types.
void SchemaReader::readAttribute(SchemaNode& node, const SchemaStatements::Attribute& attribute)
{
    const std::string_view value = attribute.value;
    const auto set = [&node](bool on, SchemaNode::Flags flag) {
        node.flags = static_cast<std::uint16_t>(node.flags | (on ? flag : 0));
    };
    switch (attribute.name) {
    case SchemaAttribute::name:
        node.name = nameOf(trimmed(value));
        break;
    case SchemaAttribute::schemaLocation:
        node.name = tree.names.intern(trimmed(value));
        break;
    case SchemaAttribute::nameSpace:
        // Wildcards have this attribute, too.
        if (node.tag == SchemaTag::import)
            node.reference.space = tree.names.intern(trimmed(value));
        break;
    case SchemaAttribute::value: // in the drafts an attribute's default
        if (node.tag == SchemaTag::enumeration)
            node.name = tree.names.intern(value);
        break;
    case SchemaAttribute::type:
    case SchemaAttribute::base:
    case SchemaAttribute::itemType:
    case SchemaAttribute::ref:
        if (node.is(SchemaNode::isReference)) // the "ref" takes precedence over a type beside it
            break;
        node.reference = resolve(value);
        set(attribute.name == SchemaAttribute::ref && node.reference.local != 0, SchemaNode::isReference);
        break;
    case SchemaAttribute::memberTypes:
    case SchemaAttribute::substitutionGroup:
        node.list = readList(value);
        break;
    case SchemaAttribute::use:
        set(trimmed(value) == "prohibited", SchemaNode::isProhibited);
        break;
    case SchemaAttribute::content:
        set(SchemaStatements::isTextContent(value), SchemaNode::isMixed);
        break;
    case SchemaAttribute::mixed:
        set(SchemaStatements::isTrue(value), SchemaNode::isMixed);
        set(!value.empty(), SchemaNode::hasMixed);
        break;
    case SchemaAttribute::abstract:
        set(SchemaStatements::isTrue(value), SchemaNode::isAbstract);
        break;
    case SchemaAttribute::defaultAttributesApply:
        set(!SchemaStatements::isTrue(value), SchemaNode::lacksDefaults);
        break;
    case SchemaAttribute::block:
        node.flags = static_cast<std::uint16_t>((node.flags & ~SchemaNode::blocksAll) | readBlocks(value));
        break;
    case SchemaAttribute::form:
        set(true, SchemaNode::hasForm);
        set(trimmed(value) == "qualified", SchemaNode::isQualified);
        break;
    default:
        break;
    }
}

// Returns the flags of a value of `block` or `blockDefault`.
std::uint16_t SchemaReader::readBlocks(std::string_view value)
{
    unsigned flags = 0;
    forEachName(value, [&flags](std::string_view word) {
        for (const auto& [known, flag] : kBlocks)
            flags |= word == known ? flag : 0;
    });
    tree.blocksDerivation |= (flags & (SchemaNode::blocksExtension | SchemaNode::blocksRestriction)) != 0;
    return static_cast<std::uint16_t>(flags);
}

// Adds a list of QNames to the tree, ended by an empty name, and returns its place.
std::uint32_t SchemaReader::readList(std::string_view value)
{
    const auto first = static_cast<std::uint32_t>(tree.listed.size());
    forEachName(value, [this](std::string_view name) {
        if (const SchemaName resolved = resolve(name); resolved.local != 0)
            tree.listed.push_back(resolved);
    });
    tree.listed.push_back({});
    return first;
}

// Returns a name as a number. A name that XML doesn't allow is kept for the report; 0 is returned for it.
NameTable::Id SchemaReader::nameOf(std::string_view text)
{
    const NameTable::Id name = tree.names.intern(text);
    if (name == 0 || tree.isXmlName(name))
        return name;
    tree.impossibleNames.emplace_back(static_cast<Index>(tree.nodes.size() - 1), name);
    return 0;
}

// Resolves a QName in the current scope (XML Schema Part 1, "QName Interpretation"). An unprefixed one is in the
// default namespace, and "xml" is always bound. A name with an undeclared prefix refers to nothing.
SchemaName SchemaReader::resolve(std::string_view qualified)
{
    qualified = trimmed(qualified);
    const std::size_t colon = qualified.rfind(':');
    const std::string_view prefix = colon == std::string_view::npos ? "" : qualified.substr(0, colon);
    const NameTable::Id local = nameOf(qualified.substr(colon == std::string_view::npos ? 0 : colon + 1));
    const NameTable::Id space = spaceOf(prefix);
    if (space != kUndeclared)
        return {space, local};
    if (prefix == "xml")
        return {SchemaTree::kXmlNamespace, local};
    return {prefix.empty() ? 0 : kUndeclared, local};
}

// Returns the current namespace of a prefix. The last prefix is cached, because most names of a document have the same
// one.
NameTable::Id SchemaReader::spaceOf(std::string_view prefix)
{
    const NameTable::Id id = prefix == tree.text(lastPrefix) ? lastPrefix : tree.names.intern(prefix);
    lastPrefix = id;
    return id < spaces.size() ? spaces[id] : kUndeclared;
}
