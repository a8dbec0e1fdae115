#include "Import/Schema/Full/SchemaSimpleTypes.h"

#include "Import/Schema/SchemaBuiltIns.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

// A type is visited twice. At the first visit, the types that it is made of are put on the stack above it; at the
// second visit, their values are known and combined. The text of complex types with elements is that of mixed content,
// or inherited.

namespace {

SchemaSimpleTypes::Value valueOfKind(SourceTypes::Kind kind)
{
    return {true, kind};
}

} // namespace

// Returns the part that a name refers to, and marks its component as reached. An unresolved one is text, as is a
// complex type in a simple one.
SchemaSimpleTypes::Part SchemaSimpleTypes::partNamed(SchemaName name, Index from)
{
    if (const auto builtIn = set.builtInKind(name)) {
        if (isBuiltInList(tree.text(name.local)))
            set.note(SourceReport::listType, from);
        return {0, valueOfKind(*builtIn)};
    }
    const SchemaTag around = tree[tree[from].parent].tag;
    Index declared = set.reach(SchemaSet::type, name, from);
    if (around == SchemaTag::simpleType && tree[declared].tag == SchemaTag::complexType) // a value has no fields
        declared = 0;
    if (declared == 0) {
        const bool isBase = around == SchemaTag::complexContent || around == SchemaTag::simpleContent;
        set.note(isBase ? SourceReport::unresolvedContent : SourceReport::unresolvedReference, from, name.local);
    }
    return {declared, {}};
}

// Returns the restriction or extension that determines the text of a type; 0 if there is none. A restriction of complex
// content doesn't inherit mixed text, because it declares its whole content itself.
SchemaSimpleTypes::Index SchemaSimpleTypes::derivationOf(Index type) const
{
    if (tree[type].tag == SchemaTag::simpleType)
        return tree.childOf(type, SchemaTag::restriction);
    if (const Index content = tree.childOf(type, SchemaTag::simpleContent); content != 0)
        return tree.childOf(content, SchemaTag::extension, SchemaTag::restriction);
    return tree.childOf(tree.childOf(type, SchemaTag::complexContent), SchemaTag::extension);
}

// A `mixed` at the complexContent takes precedence over that of the type (XML Schema Part 1, 3.4.2).
bool SchemaSimpleTypes::isMixedType(Index complexType) const
{
    const Index content = tree.childOf(complexType, SchemaTag::complexContent);
    const bool isOnContent = content != 0 && tree[content].is(SchemaNode::hasMixed);
    return tree[isOnContent ? content : complexType].is(SchemaNode::isMixed);
}

// Works out a type after the types that it is made of, with a stack instead of recursion, because derivations may nest
// without bound. A type that is derived from itself is on the stack already, with a pending value, and isn't pushed
// again.
SchemaSimpleTypes::Value SchemaSimpleTypes::of(Index type)
{
    waiting.assign(1, type);
    while (!waiting.empty()) {
        const Index top = waiting.back();
        auto [known, isNew] = values.insert(top);
        if (!isNew && known.firstConstant != kPending) {
            waiting.pop_back();
            continue;
        }
        collectParts(top);
        if (isNew) {
            known.firstConstant = kPending;
            for (const Part& part : parts)
                if (part.type != 0 && !values.find(part.type))
                    waiting.push_back(part.type);
        } else {
            waiting.pop_back();
            known = combine(top);
        }
    }
    return *values.find(type);
}

// Collects the types and values that the value of a type depends on. Called at both visits of a type; its notes are
// reported once.
void SchemaSimpleTypes::collectParts(Index type)
{
    parts.clear();
    if (const Index derivation = derivationOf(type); derivation != 0) {
        // Beside a base, a type inside has an effect in simple content only.
        const bool isNamed = tree[derivation].reference.local != 0;
        const bool mayHoldType = !isNamed || tree[type].tag == SchemaTag::complexType;
        const Index inner = mayHoldType ? tree.childOf(derivation, SchemaTag::simpleType) : 0;
        if (inner != 0)
            parts.push_back({inner, {}});
        else if (isNamed)
            parts.push_back(partNamed(tree.referenceOf(derivation), derivation));
    } else if (const Index all = tree.childOf(type, SchemaTag::unionOf); all != 0) {
        for (const SchemaName name : tree.listOf(all))
            parts.push_back(partNamed(name, all));
        for (Index at = tree[all].firstChild; (at = tree.firstOf(at, SchemaTag::simpleType)) != 0; at = tree[at].next)
            parts.push_back({at, {}});
    }
}

// Returns the value of a part. A pending one belongs to a cycle, and is empty.
SchemaSimpleTypes::Value SchemaSimpleTypes::valueOf(const Part& part) const
{
    if (part.type == 0)
        return part.value;
    const Value* const known = values.find(part.type);
    if (!known || known->firstConstant != kPending)
        return known ? *known : Value();
    if (tree[part.type].tag == SchemaTag::simpleType) // derived from itself; complex types have been reported
        set.note(SourceReport::unresolvedContent, part.type, tree[part.type].name);
    return {};
}

// Returns the text of a complex type with elements: text between its elements, or that of its base type.
SchemaSimpleTypes::Value SchemaSimpleTypes::inherit(Index complexType) const
{
    if (isMixedType(complexType))
        return {true, SourceTypes::kindText, true};
    return parts.empty() ? Value() : valueOf(parts.front());
}

// Returns the value of a type whose parts have been collected and are known.
SchemaSimpleTypes::Value SchemaSimpleTypes::combine(Index type)
{
    if (tree[type].tag == SchemaTag::complexType && tree.childOf(type, SchemaTag::simpleContent) == 0)
        return inherit(type);
    Value value = valueOfKind(SourceTypes::kindText);
    if (const Index derivation = derivationOf(type); derivation != 0)
        value = narrow(parts.empty() ? value : valueOf(parts.front()), derivation);
    else if (tree.childOf(type, SchemaTag::unionOf) != 0)
        value = unite(type);
    else if (const Index list = tree.childOf(type, SchemaTag::list); list != 0)
        noteList(type, list);
    value.isThere = true;
    value.isMixed = false;
    // Types of the schema for schemas are not types of the user.
    const bool isNamed = tree[type].tag == SchemaTag::simpleType && tree[type].hasName() &&
                         !SchemaTree::isSchemaLanguage(tree.documentOf(type).space);
    if (value.kind == SourceTypes::kindEnumeration && isNamed)
        value.named = type;
    return value;
}

// Reports a list, which becomes text whatever its items are.
void SchemaSimpleTypes::noteList(Index type, Index list)
{
    set.note(SourceReport::listType, type);
    if (tree[list].reference.local != 0)
        partNamed(tree.referenceOf(list), list);
}

// Returns the common kind of a union's members; text if they differ. A union of enumerations is one of all constants.
// Members that share their constants are added once, so repeating a large member costs nothing.
SchemaSimpleTypes::Value SchemaSimpleTypes::unite(Index type)
{
    Value value = valueOfKind(parts.empty() ? SourceTypes::kindText : valueOf(parts.front()).kind);
    for (const Part& part : parts)
        if (valueOf(part).kind != value.kind) {
            set.note(SourceReport::unionOfKinds, type);
            return valueOfKind(SourceTypes::kindText);
        }
    if (value.kind != SourceTypes::kindEnumeration)
        return value;
    value.firstConstant = static_cast<std::uint32_t>(constants.size());
    ++constantLists;
    std::unordered_set<std::uint32_t> lists;
    for (const Part& part : parts) {
        const Value member = valueOf(part);
        if (!lists.insert(member.firstConstant).second)
            continue;
        for (std::uint32_t i = 0; i < member.constantCount; ++i)
            addConstant(constants[member.firstConstant + i]);
    }
    value.constantCount = static_cast<std::uint32_t>(constants.size()) - value.firstConstant;
    return value;
}

// Narrows a value: a restriction of text by enumeration values is an enumeration. Other restrictions have no effect,
// and listed numbers and times keep their kind.
SchemaSimpleTypes::Value SchemaSimpleTypes::narrow(Value base, Index restriction)
{
    Index at = tree.childOf(restriction, SchemaTag::enumeration);
    if (at == 0 || (base.kind != SourceTypes::kindText && base.kind != SourceTypes::kindEnumeration))
        return base;
    Value value = valueOfKind(SourceTypes::kindEnumeration);
    value.firstConstant = static_cast<std::uint32_t>(constants.size());
    ++constantLists;
    for (; at != 0; at = tree.firstOf(tree[at].next, SchemaTag::enumeration))
        addConstant({tree[at].name, tree[at].documentation});
    value.constantCount = static_cast<std::uint32_t>(constants.size()) - value.firstConstant;
    return value;
}

// Adds a constant to the current list, once. A stamp for each name replaces a search through the list.
void SchemaSimpleTypes::addConstant(Constant constant)
{
    constantSeen.resize(std::max<std::size_t>(constantSeen.size(), constant.name + 1));
    if (std::exchange(constantSeen[constant.name], constantLists) == constantLists)
        return;
    // Checked here, too, because each union of enumerations has the constants of its members again.
    if (constants.size() == SourceTypes::kMaxConstants)
        set.refuse(std::to_string(SourceTypes::kMaxConstants) + " constants");
    constants.push_back(constant);
}
