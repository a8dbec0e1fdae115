#pragma once

#include "Base/KeyedTable.h"
#include "Base/Text.h"
#include "Model/Element.h"

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

class MsgBase;

/// One part of a type, as the type's document describes it. Valid until the next TypeStructure::parts(). The views
/// point to texts of the element or of the structure.
struct TypePart
{
    enum Kind
    {
        field,    ///< of a record
        constant, ///< of an enumeration; has no type
        component ///< of a table or an array; has no name and no description
    };

    Kind kind;
    const Element* element; ///< null for a component
    std::string_view name;
    std::string_view typeName; ///< "String", "Number", "Time", or the full name of a type
    std::uint32_t type;        ///< its number in this import, or TypeStructure::kNone

    /// Returns a field's description as in its record's document, or a constant's own; empty for a component. Views of
    /// the element's texts.
    TextPieces description() const;
};

/// The content of a type name, with tables and arrays resolved to their components. Valid as long as that name and the
/// structure. If the type is not in the import, the name is that of a type elsewhere, or of a simple type.
struct TypeContent
{
    std::string_view typeName; ///< "String", "Number", "Time", or a full name
    std::uint32_t type;        ///< as in TypePart
    CString repeats;           ///< "*" for each table, "[5]" for each array, outermost first; empty if neither
};

/// Returns a full name with one backslash at its start. The root folder and a name may both have one. Types of a
/// document that was read back then refer to each other under one name.
std::string_view plainName(std::string_view fullName);

/// Returns a type's name without its folder.
std::string_view shortName(std::string_view fullName);

/// The types of one import, numbered in its order, with their parts and users. Lookups use an index that is built once,
/// so a call costs time in proportion to its result, however many types there are. Valid until the importer parses
/// again: it refers to the importer's elements and their texts.
///
/// Not thread-safe, although its functions are const: parts(), and all functions that call it, reuse the storage of the
/// call before. Only one thread may use an object at a time.
class TypeStructure
{
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF; ///< no type of this import

    /// Reads the types of the last import. `message` must outlive it.
    explicit TypeStructure(MsgBase& message);

    /// Return the number of types, and the element of a type. Numbers go from 0 in the import's order.
    std::uint32_t size() const { return static_cast<std::uint32_t>(types.size()); }
    const Element& operator[](std::uint32_t type) const { return *types[type].element; }

    /// Returns the type's full name: its folder and name. A double backslash at the start becomes one.
    const CString& queryFullName(std::uint32_t type) const { return types[type].fullName; }

    /// Returns the type of a full name, the last one if several have it, or kNone. One of two backslashes at the start
    /// is ignored.
    std::uint32_t find(std::string_view fullName) const;

    /// Returns whether no two types have the same full name.
    bool hasUniqueNames() const { return index.size() == types.size(); }

    /// Returns "record", "table", "array" or "enumeration".
    const char* kindOf(std::uint32_t type) const;

    /// Returns the fields, the constants or the component, in the order of the document. The span and its texts are
    /// valid until the next call for any type of this object.
    std::span<const TypePart> parts(std::uint32_t type) const;

    /// Returns the number of parts without building them; always 1 for a table or an array.
    std::size_t partCount(std::uint32_t type) const;

    /// Returns the types with a part of this type, each once, in the import's order. Includes the type itself if it
    /// contains itself, and tables and arrays. The first call collects the users of all types, in time linear in all
    /// parts; the results then stay valid.
    std::span<const std::uint32_t> users(std::uint32_t type) const;

    /// The levels of nested tables and arrays that contentOf() resolves. Deeper ones can't be shown usefully.
    static constexpr std::size_t kDeepest = 16;

    /// Returns the content of a part, with its type resolved through tables and arrays. Stops at a table that contains
    /// itself, and after kDeepest levels.
    TypeContent contentOf(const TypePart& part) const;

    /// The directions of reach().
    enum class Direction
    {
        uses,  ///< to the types of its parts
        users, ///< to the types that use it
        both   ///< in both directions, without changing direction on the way
    };

    /// A depth of reach() without a limit.
    static constexpr std::size_t kAnyDepth = static_cast<std::size_t>(-1);

    /// Returns the types that `start` reaches in at most `depth` steps, itself first, then the nearest first. Tables
    /// and arrays on the way don't count as steps and are not in the result. With Direction::both, all used types come
    /// before the users. Returns at most `limit` types; `isComplete` is set to false if there are more, else to true.
    std::vector<std::uint32_t> reach(std::uint32_t start, std::size_t limit, bool& isComplete,
                                     Direction direction = Direction::uses, std::size_t depth = kAnyDepth) const;

private:
    struct Type
    {
        const Element* element;
        std::uint32_t number;
        CString fullName;
        CString component; // the component type of a table or an array
    };

    template <class Action>
    void forEachNeighbour(std::uint32_t type, Direction direction, const Action& action) const;
    TypePart partOf(const Element& child, const Element& record) const;
    std::uint32_t numberOf(const Element& child, const Element& record) const;

    std::deque<Type> types; // a deque, because the index points into it
    KeyedTable<const Type, &Type::fullName> index;
    std::vector<std::uint32_t> numbers;        // types by element number; empty if two types have the same name
    mutable std::vector<TypePart> lastParts;   // of the last call
    mutable std::deque<CString> lastTypeNames; // names of `lastParts` that are stored nowhere else
    mutable std::vector<std::vector<std::uint32_t>> userLists; // by type; built on demand
};
