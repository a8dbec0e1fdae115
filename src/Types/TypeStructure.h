#pragma once

#include "Base/KeyedTable.h"
#include "Base/Text.h"
#include "Model/Element.h"

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

class MsgBase;

/// One thing that a type is made of, as the type's document says it.
struct TypePart
{
    enum Kind
    {
        field,    ///< of a record
        constant, ///< of an enumeration; has no type
        component ///< of a table or an array; has no name and no description
    };

    Kind kind;
    CString name;
    CString description;
    CString typeName; ///< "String", "Number", "Time", or the full name of a type
};

/// What a type name stands for once tables and arrays have been followed to what they hold.
struct TypeContent
{
    CString typeName;   ///< "String", "Number", "Time", or a full name
    std::uint32_t type; ///< the type of this import with that name, TypeStructure::kNone for any other
    CString repeats;    ///< "" for what is there once, "*" for a table, "[5]" for an array, the outermost first
};

/// A type's name without its folder.
std::string_view shortName(std::string_view fullName);

/// The types of one import, numbered in its order: what each is made of and who uses it. Names are looked up through an
/// index that is built once, so an answer costs what it tells, however many types there are. Valid until the importer
/// parses again.
class TypeStructure
{
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF; ///< no type of this import

    explicit TypeStructure(MsgBase& message);

    std::uint32_t size() const { return static_cast<std::uint32_t>(types.size()); }
    const Element& operator[](std::uint32_t type) const { return *types[type].element; }

    /// Folder and name, with one backslash between them where both have one.
    const CString& queryFullName(std::uint32_t type) const { return types[type].fullName; }

    /// The type of that full name, the last one where several have it, or kNone.
    std::uint32_t find(std::string_view fullName) const;

    /// "record", "table", "array" or "enumeration".
    const char* kindOf(std::uint32_t type) const;

    /// Fields, constants or the component, in the order of the document.
    std::vector<TypePart> parts(std::uint32_t type) const;

    /// How many parts there are, without making them.
    std::size_t partCount(std::uint32_t type) const;

    /// The types that name this one in a part, each once, in the import's order.
    std::span<const std::uint32_t> users(std::uint32_t type) const;

    /// Follows tables and arrays from a type name to what they hold. The way ends at one that holds itself.
    TypeContent contentOf(std::string_view typeName) const;

    /// The types that `start` reaches through its parts, nearest first and itself at the head; tables and arrays on the
    /// way are passed through. At most `limit`; `isWhole` becomes false where there are more.
    std::vector<std::uint32_t> reach(std::uint32_t start, std::size_t limit, bool& isWhole) const;

private:
    struct Type
    {
        const Element* element;
        std::uint32_t number;
        CString fullName;
    };

    struct NumberedElement
    {
        const Element* element = nullptr; // of a free slot
        std::uint32_t number = kNone;
    };

    template <class Action>
    void forEachTypeName(std::uint32_t type, const Action& action) const;
    template <class Action>
    void forEachUse(std::uint32_t user, const Action& action) const;
    std::uint32_t numberOf(const Element& child, const Element& record) const;
    void numberElements();
    std::size_t slotOf(const Element* element) const;
    void collectUsers();

    std::deque<Type> types; // stay where they are: the index points to them
    KeyedTable<const Type, &Type::fullName> index;
    std::vector<NumberedElement> numbers; // a hash table by element, while users are collected
    std::vector<std::uint32_t> firstUser; // of each type, in `userList`; one more marks the end
    std::vector<std::uint32_t> userList;
};
