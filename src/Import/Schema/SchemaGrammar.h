#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// What a statement of the schema language is (https://www.w3.org/TR/xmlschema11-1/); those of one effect have one tag.
enum class SchemaTag : std::uint8_t
{
    none, ///< unknown
    schema,
    include,
    import,
    redefine, ///< or override
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
    // Those above have a part in types.
    annotation,
    documentation,
    appinfo,
    facet,      ///< but an enumeration
    constraint, ///< unique, key, keyref
    path,       ///< selector, field
    notation,
    alternative,
    assertion,
    openContent,
    // No statements, but what decides about the statements inside: a restriction by what it restricts, `ref`.
    simpleRestriction,
    textRestriction,
    reference,
    count
};

/// An attribute of a statement, by its name.
enum class SchemaAttribute : std::uint8_t
{
    unknown,
    abstract,
    appliesToEmpty,
    attributeFormDefault,
    base,
    block,
    blockDefault,
    content,
    defaultAttributes,
    defaultAttributesApply,
    defaultValue,
    elementFormDefault,
    exact,
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
    nullable,
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

/// The editions of the schema language, told apart by their namespaces.
enum class SchemaEdition : std::uint8_t
{
    none,
    draft, ///< of 1999 and 2000
    current
};

/// The edition whose namespace this is; none for null and for other namespaces.
SchemaEdition schemaEditionOf(const char* uri);

/// The words of the schema language, for one parse: it looks them up once for each interned name.
class SchemaGrammar
{
public:
    /// `local` is a name's local part as the parser has interned it.
    SchemaTag tagOf(const char* local) { return static_cast<SchemaTag>(tags.find(local, lookUpTag)); }
    SchemaAttribute attributeOf(const char* local)
    {
        return static_cast<SchemaAttribute>(attributes.find(local, lookUpAttribute));
    }

    /// Whether a statement has an effect directly inside of another.
    static bool mayHold(SchemaTag holder, SchemaTag statement)
    {
        return (rules[static_cast<std::size_t>(holder)].children >> static_cast<int>(statement) & 1) != 0;
    }

    /// Whether the statement has that attribute.
    static bool mayHave(SchemaTag statement, SchemaAttribute attribute, SchemaEdition edition)
    {
        const Rule& rule = rules[static_cast<std::size_t>(statement)];
        const std::uint64_t all = edition == SchemaEdition::draft ? rule.draftAttributes : rule.attributes;
        return (all >> static_cast<int>(attribute) & 1) != 0;
    }

private:
    // What goes with a tag, each a bit.
    struct Rule
    {
        std::uint64_t children;
        std::uint64_t attributes;
        std::uint64_t draftAttributes;
    };
    using Rules = std::array<Rule, static_cast<std::size_t>(SchemaTag::count)>;
    static constexpr Rules makeRules();
    static const Rules rules;

    // By address: what the same address said before, as long as no other took its slot.
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

    static std::uint8_t lookUpTag(const char* local);
    static std::uint8_t lookUpAttribute(const char* local);

    Cache tags;
    Cache attributes;
};
