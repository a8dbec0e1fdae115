#pragma once

#include "Base/Text.h"
#include "Xml/XmlParser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

/// The kinds of statements in the schema language (https://www.w3.org/TR/xmlschema11-1/). Statements of the same effect
/// share a tag. The order matters, because ranges are compared: `element` to `attributeGroup` are the components of
/// types, and all statements up to `alternative` affect types.
enum class SchemaTag : std::uint8_t
{
    none, ///< no statement of the language
    schema,
    include,
    import,
    redefine, ///< also override
    element,
    attribute,
    complexType,
    simpleType,
    group,
    attributeGroup,
    sequence,
    choice,
    all,
    any,
    anyAttribute,
    simpleContent,
    complexContent,
    extension,
    restriction,
    unionOf,
    list,
    enumeration,
    alternative, ///< of types, in 1.1
    // The statements above affect types.
    annotation,
    documentation,
    appinfo,
    facet,      ///< any except enumeration
    constraint, ///< unique, key and keyref
    path,       ///< selector and field
    notation,
    assertion,   ///< in 1.1, also as a facet
    openContent, ///< in 1.1, also defaultOpenContent
    // No statements, but rules for the statements inside: a restriction depends on its context, and a statement with
    // `ref` holds only annotations.
    simpleRestriction,
    textRestriction,
    reference,
    count
};

/// The attributes of statements, in the order of their words, by which they are looked up. Some words are keywords of
/// C++, so `defaultValue`, `nameSpace`, `publicId` and `systemId` have other names than their words.
enum class SchemaAttribute : std::uint8_t
{
    unknown,
    abstract,
    appliesToEmpty,
    attributeFormDefault,
    base,
    block,
    blockDefault,
    content, ///< in the drafts: the sort of content
    defaultValue,
    defaultAttributes,
    defaultAttributesApply,
    elementFormDefault,
    exact, ///< in the drafts: like `block`
    final,
    finalDefault,
    fixed,
    form,
    id,
    inheritable,
    itemType,
    maxOccurs,
    memberTypes,
    minOccurs,
    mixed,
    mode,
    name,
    nameSpace,
    nillable,
    notNamespace,
    notQName,
    nullable, ///< in the drafts: `nillable`
    processContents,
    publicId,
    ref,
    refer,
    schemaLocation,
    source,
    substitutionGroup,
    systemId,
    targetNamespace,
    test,
    type,
    use,
    value,
    version,
    xpath,
    xpathDefaultNamespace,
    count
};

/// The editions of the schema language, by namespace. Versions 1.0 and 1.1 share one, so both count as `current`.
enum class SchemaEdition : std::uint8_t
{
    none,
    draft, ///< of 1999 and 2000
    current
};

/// Returns the edition with this namespace URI; `none` for null and for other namespaces.
SchemaEdition schemaEditionOf(const char* uri);

/// Calls `take` with each name of a list separated by white space.
template <class Take>
void forEachName(std::string_view list, Take take)
{
    for (list = trimmed(list); !list.empty(); list = trimmed(list)) {
        const std::size_t end = std::min(list.find_first_of(kWhitespace), list.size());
        take(list.substr(0, end));
        list.remove_prefix(end);
    }
}

/// Looks up the words of the schema language during one parse. Interned names are cached by address, so use a new
/// object for each parse: in another parse the same address may be another name.
class SchemaGrammar
{
public:
    /// Returns the tag or attribute with this local name, which must be interned by the parser; `none` or `unknown` if
    /// there is none.
    SchemaTag tagOf(const char* local)
    {
        return static_cast<SchemaTag>(
            tags.find(local, [](const char* word) { return static_cast<std::uint8_t>(lookUpTag(word)); }));
    }
    SchemaAttribute attributeOf(const char* local)
    {
        return static_cast<SchemaAttribute>(attributes.find(local, lookUpAttribute));
    }

    /// Returns whether a statement has an effect directly inside another. `holder` is its tag, or one of the special
    /// ones for its context, see SchemaStatements::holder().
    static bool mayHold(SchemaTag holder, SchemaTag statement)
    {
        return (rules[static_cast<std::size_t>(holder)].children >> static_cast<int>(statement) & 1) != 0;
    }

    /// Returns whether a statement may have only one child of the kinds that `statement` belongs to. An attribute such
    /// as `type` counts as that child.
    static bool isOnlyChild(SchemaTag holder, SchemaTag statement);

    /// Returns what a statement lacks that has no content, and no attribute in its place; null if it may be empty.
    static const char* emptinessOf(SchemaTag holder);

    /// Returns whether the statement has that attribute in an edition.
    static bool mayHave(SchemaTag statement, SchemaAttribute attribute, SchemaEdition edition)
    {
        const Rule& rule = rules[static_cast<std::size_t>(statement)];
        const std::uint64_t all = edition == SchemaEdition::draft ? rule.draftAttributes : rule.attributes;
        return (all >> static_cast<int>(attribute) & 1) != 0;
    }

    /// Returns whether a facet of any edition has this name.
    static bool isFacet(std::string_view name)
    {
        const SchemaTag tag = lookUpTag(name);
        return tag == SchemaTag::facet || tag == SchemaTag::enumeration || tag == SchemaTag::assertion;
    }

private:
    // The sets that go with a tag, one bit for each member.
    struct Rule
    {
        std::uint64_t children;
        std::uint64_t attributes;
        std::uint64_t draftAttributes;
    };
    using Rules = std::array<Rule, static_cast<std::size_t>(SchemaTag::count)>;
    static constexpr Rules makeRules();
    static const Rules rules;

    // A direct-mapped cache keyed by the address of a name. If two names share a slot, they are only looked up again. A
    // schema uses few words, each many times.
    class Cache
    {
    public:
        template <class LookUp>
        std::uint8_t find(const char* name, LookUp lookUp)
        {
            const auto address = reinterpret_cast<std::uintptr_t>(name);
            Slot& slot = slots[(address ^ address >> 8) % slots.size()];
            if (slot.name != name)
                slot = {name, lookUp(name)};
            return slot.value;
        }

    private:
        struct Slot
        {
            const char* name = nullptr;
            std::uint8_t value = 0;
        };
        std::array<Slot, 256> slots;
    };

    static SchemaTag lookUpTag(std::string_view local);
    static std::uint8_t lookUpAttribute(const char* local);

    Cache tags;
    Cache attributes;
};
