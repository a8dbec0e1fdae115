#include "Import/Schema/Literal/SchemaKinds.h"

#include "Import/Schema/SchemaBuiltIns.h"

#include <utility>

void SchemaKinds::clear()
{
    types.clear();
    parts.clear();
    named.clear();
    languagePrefixes.clear();
    texts.release();
}

SchemaKinds::Index SchemaKinds::add(std::string_view name)
{
    const auto index = static_cast<Index>(types.size());
    types.emplace_back();
    if (!name.empty())
        named.try_emplace(texts.keep(name), index);
    return index;
}

void SchemaKinds::resize(std::size_t count)
{
    types.resize(count);
    std::erase_if(named, [count](const auto& entry) { return entry.second >= count; });
}

void SchemaKinds::addPart(Index type, Part part)
{
    part.next = std::exchange(types[type].firstPart, static_cast<Index>(parts.size()));
    parts.push_back(part);
}

// Determines kinds with a stack of waiting types instead of recursion, because derivations may nest without bound. A
// type is combined when it is on top for the second time, since all its parts are known then.
SchemaKinds::Kind SchemaKinds::kindOf(Index type)
{
    std::vector<Index> waiting{type};
    while (!waiting.empty()) {
        Type& top = types[waiting.back()];
        if (top.isVisited && !top.isKnown) {
            top.kind = combine(top);
            top.isKnown = true;
        }
        if (top.isKnown) {
            waiting.pop_back();
            continue;
        }
        top.isVisited = true;
        for (Index part = top.firstPart; part != kNone; part = parts[part].next)
            if (const Index inner = typeOf(parts[part]); inner != kNone && !types[inner].isVisited)
                waiting.push_back(inner);
    }
    return types[type].kind;
}

// Returns the kind of a type from those of its parts: a restriction has one, a union several.
SchemaKinds::Kind SchemaKinds::combine(const Type& type) const
{
    // A list is text, whatever its items are.
    if (type.isList)
        return text;
    Kind kind = text;
    bool areEqual = true;
    for (Index part = type.firstPart; part != kNone; part = parts[part].next) {
        const Index inner = typeOf(parts[part]);
        const Kind own = inner != kNone ? types[inner].kind : builtInKindOf(parts[part].typeName);
        if (own == unknown)
            return unknown;
        areEqual = areEqual && (part == type.firstPart || own == kind);
        kind = own;
    }
    if (!areEqual)
        return text;
    return kind == text && type.isListed ? listed : kind;
}

SchemaKinds::Kind SchemaKinds::kindOf(std::string_view typeName)
{
    const Kind builtIn = builtInKindOf(typeName);
    const Index type = builtIn == unknown ? typeCalled(typeName) : kNone;
    return type == kNone ? builtIn : kindOf(type);
}

SchemaKinds::Kind SchemaKinds::builtInKindOf(std::string_view typeName) const
{
    const std::size_t colon = typeName.find(':');
    const std::string_view prefix = typeName.substr(0, colon == typeName.npos ? 0 : colon);
    const bool isOfLanguage = prefix == "xs" || prefix == "xsd" || languagePrefixes.contains(prefix);
    const auto kind = isOfLanguage ? builtInKind(typeName.substr(colon + 1)) : std::nullopt; // npos + 1 is 0
    if (!kind)
        return unknown;
    return *kind == SourceTypes::kindNumber ? number : *kind == SourceTypes::kindTime ? time : text;
}

bool SchemaKinds::isBuiltInList(std::string_view typeName) const
{
    return ::isBuiltInList(typeName.substr(typeName.find(':') + 1)) && builtInKindOf(typeName) == text;
}

SchemaKinds::Index SchemaKinds::typeCalled(std::string_view typeName) const
{
    const auto found = named.find(typeName.substr(typeName.find(':') + 1));
    return found == named.end() ? kNone : found->second;
}
