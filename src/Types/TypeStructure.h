#pragma once

#include "Base/KeyedTable.h"
#include "Base/Text.h"
#include "Model/Element.h"

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

class MsgBase;

/// One thing that a type is made of, as the type's document says it. Valid until the next call of
/// TypeStructure::parts().
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
    std::uint32_t type;        ///< the type of this import with that name, TypeStructure::kNone for any other

    TextPieces description() const;
};

/// What a type name stands for once tables and arrays have been followed to what they hold. Valid as long as that name.
struct TypeContent
{
    std::string_view typeName; ///< "String", "Number", "Time", or a full name
    std::uint32_t type;        ///< as in TypePart
    CString repeats;           ///< "" for what is there once, "*" for a table, "[5]" for an array, the outermost first
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

    /// Fields, constants or the component, in the order of the document. The next call takes their place.
    std::span<const TypePart> parts(std::uint32_t type) const;

    /// How many parts there are, without making them.
    std::size_t partCount(std::uint32_t type) const;

    /// The types that name this one in a part, each once, in the import's order.
    std::span<const std::uint32_t> users(std::uint32_t type) const;

    /// Follows tables and arrays from a part's type to what they hold. The way ends at one that holds itself.
    TypeContent contentOf(const TypePart& part) const;

    /// Which way reach() goes from a type.
    enum class Way
    {
        uses,  ///< to what its parts hold
        users, ///< to the types that hold it
        both   ///< each way by itself
    };

    static constexpr std::size_t kAnyDepth = static_cast<std::size_t>(-1);

    /// The types that `start` reaches in at most `depth` steps, nearest first and itself at the head; tables and arrays
    /// between two are no steps and not among them. At most `limit`; `isWhole` becomes false where there are more.
    std::vector<std::uint32_t> reach(std::uint32_t start, std::size_t limit, bool& isWhole, Way way = Way::uses,
                                     std::size_t depth = kAnyDepth) const;

private:
    struct Type
    {
        const Element* element;
        std::uint32_t number;
        CString fullName;
        CString component; // the type that a table or an array holds
    };

    template <class Action>
    void forEachReached(std::uint32_t type, Way way, const Action& action) const;
    TypePart partOf(const Element& child, const Element& record) const;
    std::uint32_t numberOf(const Element& child, const Element& record) const;
    void collectUsers() const;

    std::deque<Type> types; // stay where they are: the index points to them
    KeyedTable<const Type, &Type::fullName> index;
    std::vector<std::uint32_t> numbers;           // of the types, by the numbers of elements; none of equal names
    mutable std::vector<TypePart> partsInHand;    // of the last call
    mutable std::deque<CString> typeNamesInHand;  // those of parts in hand that stand nowhere else
    mutable std::vector<std::uint32_t> firstUser; // of each type, in `userList`; one more marks the end; collected late
    mutable std::vector<std::uint32_t> userList;
};
