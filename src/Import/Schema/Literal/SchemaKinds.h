#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"

#include <cstdint>
#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The simple types of all documents of a schema, as far as it takes to say of which kind their values are. The literal
/// reading makes text of all of them; this tells which of them were more.
class SchemaKinds
{
public:
    using Index = std::uint32_t;
    static constexpr Index kNone = ~0U;

    enum Kind : std::uint8_t
    {
        text,
        number,
        time,
        listed, ///< one of several constants
        unknown ///< of a type that is nowhere declared
    };

    void clear();

    /// A prefix that stands for the schema language; "" for names without one.
    void addLanguagePrefix(std::string_view prefix) { languagePrefixes.emplace(prefix); }

    /// A simple type; "" is the name of one that stands inside a declaration or another type.
    Index add(std::string_view name);

    /// What a type restricts, or a member of its union.
    void addPart(Index type, std::string_view typeName) { addPart(type, {texts.keep(typeName), kNone, kNone}); }
    void addPart(Index type, Index inner) { addPart(type, {{}, inner, kNone}); }

    void setList(Index type) { types[type].isList = true; }
    void setListed(Index type) { types[type].isListed = true; }

    /// How many there are; takes back all but the first ones, which a document that is left out has added.
    std::size_t size() const { return types.size(); }
    void resize(std::size_t count);

    /// The kind of a simple type, when all documents have been read: that of its parts where they agree, else text.
    Kind kindOf(Index type);

    /// The kind of the type that is called so, built in or declared.
    Kind kindOf(std::string_view typeName);

    /// The same of a type of the schema language; unknown for any other.
    Kind builtInKindOf(std::string_view typeName) const;

private:
    struct Part
    {
        std::string_view typeName; // or else
        Index inner;
        Index next; // of the same type
    };

    struct Type
    {
        Index firstPart = kNone;
        Kind kind = text;
        bool isList = false;
        bool isListed = false;
        bool isMet = false;   // it is being resolved, and counts as text till then
        bool isKnown = false; // it has been
    };

    void addPart(Index type, Part part);
    Index typeCalled(std::string_view typeName) const;
    Index typeOf(const Part& part) const { return part.inner != kNone ? part.inner : typeCalled(part.typeName); }
    Kind combine(const Type& type) const;

    Arena texts;
    std::vector<Type> types;
    std::vector<Part> parts;
    std::unordered_map<std::string_view, Index, KeyHash> named;
    std::set<std::string, std::less<>> languagePrefixes;
};
