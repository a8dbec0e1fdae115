#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"

#include <cstdint>
#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The simple types of all documents of a schema, reduced to what determines the kind of their values. The literal
/// reading makes text of all simple types; this class identifies those that are not text, so that they are reported as
/// losses. Names are compared without their prefixes; of several types of one name the first one counts.
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
        listed, ///< an enumeration
        unknown ///< a type that isn't declared
    };

    /// Removes all types.
    void clear();

    /// Adds a prefix that is bound to the schema language anywhere in the documents; "" for the default namespace.
    void addLanguagePrefix(std::string_view prefix) { languagePrefixes.emplace(prefix); }

    /// Adds a simple type and returns it. The name is "" if it is anonymous.
    Index add(std::string_view name);

    /// Adds the type that a type restricts, or a member of its union: by name, or by index if it is inside.
    void addPart(Index type, std::string_view typeName) { addPart(type, {texts.keep(typeName), kNone, kNone}); }
    void addPart(Index type, Index inner) { addPart(type, {{}, inner, kNone}); }

    /// Marks a type as a list, or as one with enumeration values.
    void setList(Index type) { types[type].isList = true; }
    void setListed(Index type) { types[type].isListed = true; }

    /// Return or reduce the number of types. resize() removes those of a document that was left out.
    std::size_t size() const { return types.size(); }
    void resize(std::size_t count);

    /// Returns the kind of a simple type: that of its parts if they agree, else text; unknown if one of them is. Call
    /// it after all documents are read.
    Kind kindOf(Index type);

    /// Returns the kind of the type with this name, built-in or declared; unknown if there is none, and for complex
    /// types.
    Kind kindOf(std::string_view typeName);

    /// Returns whether a simple type with this name is declared.
    bool isDeclared(std::string_view typeName) const { return typeCalled(typeName) != kNone; }

    /// Returns the kind of a built-in type; unknown for any other.
    Kind builtInKindOf(std::string_view typeName) const;

    /// Returns whether a built-in type is a list.
    bool isBuiltInList(std::string_view typeName) const;

private:
    // A link in the list of a type's parts, newest first.
    struct Part
    {
        std::string_view typeName; // empty if `inner` is set
        Index inner;
        Index next; // the type's next part
    };

    struct Type
    {
        Index firstPart = kNone;
        Kind kind = text;
        bool isList = false;
        bool isListed = false;
        bool isVisited = false; // in progress; counts as text if it refers to itself
        bool isKnown = false;   // its kind is worked out
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
