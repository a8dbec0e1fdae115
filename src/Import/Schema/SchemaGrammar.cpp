#include "Import/Schema/SchemaGrammar.h"

#include "Base/Text.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace {

using Tag = SchemaTag;
using Word = SchemaAttribute;

struct TagWord
{
    std::string_view word;
    Tag tag;
};

// The statements of all editions, with the facets of the drafts, which like all facets don't affect types. Sorted for a
// binary search, which is rare because of the cache.
constexpr TagWord kTags[] = {
    {"all", Tag::all},
    {"alternative", Tag::alternative},
    {"annotation", Tag::annotation},
    {"any", Tag::any},
    {"anyAttribute", Tag::anyAttribute},
    {"appInfo", Tag::appinfo},
    {"appinfo", Tag::appinfo},
    {"assert", Tag::assertion},
    {"assertion", Tag::assertion},
    {"attribute", Tag::attribute},
    {"attributeGroup", Tag::attributeGroup},
    {"choice", Tag::choice},
    {"complexContent", Tag::complexContent},
    {"complexType", Tag::complexType},
    {"defaultOpenContent", Tag::openContent},
    {"documentation", Tag::documentation},
    {"duration", Tag::facet},
    {"element", Tag::element},
    {"encoding", Tag::facet},
    {"enumeration", Tag::enumeration},
    {"explicitTimezone", Tag::facet},
    {"extension", Tag::extension},
    {"field", Tag::path},
    {"fractionDigits", Tag::facet},
    {"group", Tag::group},
    {"import", Tag::import},
    {"include", Tag::include},
    {"key", Tag::constraint},
    {"keyref", Tag::constraint},
    {"length", Tag::facet},
    {"list", Tag::list},
    {"maxExclusive", Tag::facet},
    {"maxInclusive", Tag::facet},
    {"maxLength", Tag::facet},
    {"maxScale", Tag::facet},
    {"minExclusive", Tag::facet},
    {"minInclusive", Tag::facet},
    {"minLength", Tag::facet},
    {"minScale", Tag::facet},
    {"notation", Tag::notation},
    {"openContent", Tag::openContent},
    {"override", Tag::redefine},
    {"pattern", Tag::facet},
    {"period", Tag::facet},
    {"precision", Tag::facet},
    {"redefine", Tag::redefine},
    {"restriction", Tag::restriction},
    {"scale", Tag::facet},
    {"schema", Tag::schema},
    {"selector", Tag::path},
    {"sequence", Tag::sequence},
    {"simpleContent", Tag::simpleContent},
    {"simpleType", Tag::simpleType},
    {"totalDigits", Tag::facet},
    {"union", Tag::unionOf},
    {"unique", Tag::constraint},
    {"whiteSpace", Tag::facet},
};
static_assert(std::ranges::is_sorted(kTags, {}, &TagWord::word));

// The words of the attributes, sorted, which is also the order of SchemaAttribute.
// clang-format off
constexpr std::string_view kAttributes[] = {
    "", "abstract", "appliesToEmpty", "attributeFormDefault", "base", "block", "blockDefault", "content", "default",
    "defaultAttributes", "defaultAttributesApply", "elementFormDefault", "exact", "final", "finalDefault", "fixed",
    "form", "id", "inheritable", "itemType", "maxOccurs", "memberTypes", "minOccurs", "mixed", "mode", "name",
    "namespace", "nillable", "notNamespace", "notQName", "nullable", "processContents", "public", "ref", "refer",
    "schemaLocation", "source", "substitutionGroup", "system", "targetNamespace", "test", "type", "use", "value",
    "version", "xpath", "xpathDefaultNamespace"};
// clang-format on
static_assert(std::size(kAttributes) == static_cast<std::size_t>(Word::count) && std::ranges::is_sorted(kAttributes));

// A set of tags or attributes, one bit each. Both enumerations fit into 64 bits, so a lookup is a shift.
template <class Of>
class Set
{
public:
    constexpr Set(std::initializer_list<Of> members)
    {
        for (const Of member : members)
            bits |= bit(member);
    }
    constexpr Set operator|(Set other) const
    {
        other.bits |= bits;
        return other;
    }
    std::uint64_t bits = 0;

private:
    static_assert(static_cast<int>(Of::count) <= 64);
    static constexpr std::uint64_t bit(Of member) { return std::uint64_t{1} << static_cast<int>(member); }
};
using Tags = Set<Tag>;
using Words = Set<Word>;

// The allowed parts of a statement. At run time, only the bits of the sets are used, see makeRules().
struct TagRule
{
    Tag tag;
    Tags children;            // in addition to annotations
    Words attributes;         // in addition to `id`
    Words ofDrafts = Words{}; // further attributes in the drafts
};

constexpr Tags kParticles{Tag::element, Tag::group, Tag::sequence, Tag::choice, Tag::all, Tag::any};
constexpr Tags kAttributeUses{Tag::attribute, Tag::attributeGroup, Tag::anyAttribute};
constexpr Tags kComponents{Tag::element, Tag::attribute, Tag::complexType,   Tag::simpleType,
                           Tag::group,   Tag::notation,  Tag::attributeGroup};
constexpr Tags kContent = kParticles | kAttributeUses | Tags{Tag::openContent, Tag::assertion};
constexpr Tags kFacets{Tag::simpleType, Tag::facet, Tag::enumeration, Tag::assertion};
constexpr Words kOccurs{Word::minOccurs, Word::maxOccurs};
constexpr Words kAny{Word::nameSpace, Word::processContents, Word::notNamespace, Word::notQName};

// Sorted by tag, one row for each, so that a tag is the index of its row. The rules don't include the order of
// statements. A statement that has an effect at a place is accepted there, even if the language doesn't allow it,
// because nothing is lost.
constexpr TagRule kRules[] = {
    {Tag::none, {}, {}},
    {Tag::schema,
     kComponents | Tags{Tag::include, Tag::import, Tag::redefine, Tag::openContent},
     {Word::targetNamespace, Word::version, Word::finalDefault, Word::blockDefault, Word::attributeFormDefault,
      Word::elementFormDefault, Word::defaultAttributes, Word::xpathDefaultNamespace}},
    {Tag::include, {}, {Word::schemaLocation}},
    {Tag::import, {}, {Word::schemaLocation, Word::nameSpace}},
    {Tag::redefine, kComponents, {Word::schemaLocation}},
    {Tag::element,
     {Tag::simpleType, Tag::complexType, Tag::constraint, Tag::alternative},
     kOccurs | Words{Word::abstract, Word::block, Word::defaultValue, Word::final, Word::fixed, Word::form, Word::name,
                     Word::nillable, Word::ref, Word::substitutionGroup, Word::targetNamespace, Word::type},
     {Word::nullable, Word::exact}},
    {Tag::attribute,
     {Tag::simpleType},
     {Word::defaultValue, Word::fixed, Word::form, Word::inheritable, Word::name, Word::ref, Word::targetNamespace,
      Word::type, Word::use},
     kOccurs | Words{Word::value}},
    {Tag::complexType,
     kContent | Tags{Tag::simpleContent, Tag::complexContent},
     {Word::abstract, Word::block, Word::defaultAttributesApply, Word::final, Word::mixed, Word::name},
     {Word::exact, Word::content}},
    {Tag::simpleType, {Tag::restriction, Tag::list, Tag::unionOf, Tag::facet}, {Word::final, Word::name}},
    {Tag::group, kParticles, kOccurs | Words{Word::name, Word::ref}},
    {Tag::attributeGroup, kAttributeUses, {Word::name, Word::ref}},
    {Tag::sequence, kParticles, kOccurs},
    {Tag::choice, kParticles, kOccurs},
    {Tag::all, kParticles, kOccurs},
    {Tag::any, {}, kAny | kOccurs},
    {Tag::anyAttribute, {}, kAny},
    {Tag::simpleContent, {Tag::extension, Tag::restriction}, {}},
    {Tag::complexContent, {Tag::extension, Tag::restriction}, {Word::mixed}},
    {Tag::extension, kContent, {Word::base}},
    {Tag::restriction, kContent, {Word::base}},
    {Tag::unionOf, {Tag::simpleType}, {Word::memberTypes}},
    {Tag::list, {Tag::simpleType}, {Word::itemType}},
    {Tag::enumeration, {}, {Word::value, Word::fixed}},
    {Tag::alternative, {Tag::simpleType, Tag::complexType}, {Word::test, Word::type, Word::xpathDefaultNamespace}},
    {Tag::annotation, {Tag::documentation, Tag::appinfo}, {}},
    {Tag::documentation, {}, {Word::source}},
    {Tag::appinfo, {}, {Word::source}},
    {Tag::facet, {}, {Word::value, Word::fixed}},
    {Tag::constraint, {Tag::path}, {Word::name, Word::refer, Word::ref}},
    {Tag::path, {}, {Word::xpath, Word::xpathDefaultNamespace}},
    {Tag::notation, {}, {Word::name, Word::publicId, Word::systemId}},
    {Tag::assertion, {}, {Word::test, Word::xpathDefaultNamespace}},
    {Tag::openContent, {Tag::any}, {Word::mode, Word::appliesToEmpty}},
    {Tag::simpleRestriction, kFacets, {}},
    {Tag::textRestriction, kFacets | kContent, {}},
    {Tag::reference, {}, {}},
};
static_assert(std::size(kRules) == static_cast<std::size_t>(Tag::count));
static_assert(std::ranges::is_sorted(kRules, {}, &TagRule::tag));

} // namespace

SchemaEdition schemaEditionOf(const char* uri)
{
    const std::string_view space = uri ? uri : "";
    if (space == "http://www.w3.org/2001/XMLSchema")
        return SchemaEdition::current;
    return space == "http://www.w3.org/2000/10/XMLSchema" || space == "http://www.w3.org/1999/XMLSchema"
               ? SchemaEdition::draft
               : SchemaEdition::none;
}

// Adds what every statement may have: an annotation and an `id`.
constexpr SchemaGrammar::Rules SchemaGrammar::makeRules()
{
    Rules all{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Words attributes = kRules[i].attributes | Words{Word::id};
        all[i] = {(kRules[i].children | Tags{Tag::annotation}).bits, attributes.bits,
                  (attributes | kRules[i].ofDrafts).bits};
    }
    return all;
}

constinit const SchemaGrammar::Rules SchemaGrammar::rules = makeRules();

bool SchemaGrammar::isOnlyChild(SchemaTag holder, SchemaTag tag)
{
    switch (holder) {
    case Tag::element:
    case Tag::attribute:
    case Tag::alternative:
        return tag == Tag::simpleType || tag == Tag::complexType;
    case Tag::simpleRestriction:
        return tag == Tag::simpleType;
    case Tag::simpleType:
    case Tag::simpleContent:
    case Tag::complexContent:
    case Tag::list:
        return true;
    case Tag::complexType:
        return tag == Tag::simpleContent || tag == Tag::complexContent;
    default:
        return false;
    }
}

const char* SchemaGrammar::emptinessOf(SchemaTag holder)
{
    switch (holder) {
    case Tag::simpleRestriction: // of the type that `base` names, or the one inside
    case Tag::textRestriction:
        return "restriction without base";
    case Tag::simpleType:
        return "simpleType without restriction, list or union";
    case Tag::simpleContent:
        return "simpleContent without extension or restriction";
    case Tag::complexContent:
        return "complexContent without extension or restriction";
    case Tag::unionOf:
        return "union without memberTypes";
    case Tag::list:
        return "list without itemType";
    default:
        return nullptr;
    }
}

SchemaTag SchemaGrammar::lookUpTag(std::string_view local)
{
    const auto* const found = std::ranges::lower_bound(kTags, local, {}, &TagWord::word);
    return found != std::end(kTags) && found->word == local ? found->tag : SchemaTag::none;
}

std::uint8_t SchemaGrammar::lookUpAttribute(const char* local)
{
    const auto* const found = std::ranges::lower_bound(kAttributes, std::string_view(local));
    const bool isKnown = found != std::end(kAttributes) && *found == local;
    return static_cast<std::uint8_t>(isKnown ? found - std::begin(kAttributes) : 0);
}
