#pragma once

#include "Base/Fingerprint.h"
#include "Import/SourceReport.h"

#include <memory_resource>
#include <vector>

/// The reason why an entry's type isn't the declared one.
enum class SchemaTypeLoss : std::uint8_t
{
    none,
    innerType, ///< the simple type inside is not text, but becomes text
    otherType  ///< an earlier declaration of the same name takes precedence
};

/// Returns a registered name without the "*" of a repeated declaration.
std::string_view unmarkedName(std::string_view name);

/// The contents of a declaration. Texts are views that live as long as the documents of the import.
struct SchemaEntryContent
{
    SourcePlace place{};
    std::string_view name{}; ///< followed by "*" if it repeats
    std::string_view type{};
    bool isReference = false;  ///< read through `ref`
    bool isSingle = false;     ///< doesn't repeat if declared twice
    bool isInRepeated = false; ///< in a repeated group
    bool isAttribute = false;
    SchemaTypeLoss loss = SchemaTypeLoss::none;
};

/// An entry of a table: a declaration with the declarations inside it. Its key is the parent's key followed directly by
/// the name, without a separator, so "Or" with "derline" and "Order" with "line" share a key. The key is kept as its
/// fingerprint, so a record with a long name doesn't repeat it for each field.
class SchemaElement
{
public:
    /// `parentName` is the text of the parent's key; empty without a parent.
    SchemaElement(const Fingerprint& key, std::string_view parentName, const SchemaEntryContent& content);

    const Fingerprint& queryKey() const { return key; }

    /// Returns the declared name; followed by "*" if it repeats.
    std::string_view queryName() const { return {name, nameSize}; }
    /// Returns the registered type; empty if it has none.
    std::string_view queryType() const { return {type, typeSize}; }

    /// Sets the type of an earlier declaration; `isOther` if it differs from the own one.
    void setType(std::string_view earlier, bool isOther)
    {
        type = earlier.data();
        typeSize = static_cast<std::uint32_t>(earlier.size());
        if (isOther)
            loss = SchemaTypeLoss::otherType;
    }

    SourcePlace queryPlace() const { return place; }

    /// Return whether the declaration is read through `ref`, is in a repeated group, and is an attribute.
    bool isReference() const { return isReferring; }
    bool isInRepeated() const { return isOfRepeated; }
    bool isAttribute() const { return isOfAttribute; }

    /// Records that the declaration occurs in addition to the earlier one, not instead of it, so it repeats.
    void setDeclaredAgain() { declaredAgain = true; }
    bool isDeclaredAgain() const { return declaredAgain; }

    /// Records whether the type of this name is being read, so that another one inside of it is found.
    void setOpen(bool on) { open = on; }
    bool isOpen() const { return open; }

    /// Returns why the type isn't the declared one; `none` if it is.
    SchemaTypeLoss queryLoss() const { return loss; }

    /// Returns whether the trimmed text of the key ends with "*" and is longer than that.
    bool isMarked() const { return marked; }

    using Children = std::pmr::vector<SchemaElement*>;

    /// Appends a child. The same entry may be appended several times. The list lies in `memory`, which must outlive the
    /// entry and frees it; at first it has room for `expected` children.
    void addChild(SchemaElement* child, std::size_t expected, std::pmr::memory_resource& memory)
    {
        if (!children) {
            children = std::pmr::polymorphic_allocator<>(&memory).new_object<Children>();
            children->reserve(expected);
        }
        children->push_back(child);
    }

    /// Returns the children; null if there are none.
    Children* queryChildren() const { return children; }

    /// How an entry of the include table was added to the element table.
    enum Pull : std::uint8_t
    {
        notPulled,
        pulledAsType,
        pulledAsChild ///< but its own children may be missing from that table
    };
    void setPull(Pull how) { pull = how; }
    Pull queryPull() const { return pull; }

private:
    // In large tables each access to an entry is a cache miss, so an entry fits into one cache line. For the same
    // reason, texts are pointers with 32-bit sizes. They point into the outlines.
    Fingerprint key;
    const char* name;
    const char* type;
    std::uint32_t nameSize; // a document is smaller than 4 GB
    std::uint32_t typeSize;
    Children* children = nullptr; // most entries have none
    SourcePlace place;
    Pull pull = notPulled;
    bool marked : 1;
    bool isReferring : 1;
    bool isOfRepeated : 1;
    bool isOfAttribute : 1;
    bool declaredAgain : 1 = false;
    bool open : 1 = false;
    SchemaTypeLoss loss;
};
