#pragma once

#include "Base/Fingerprint.h"
#include "Import/SourceReport.h"

#include <memory>
#include <vector>

/// Why an entry has another type than its declaration says.
enum class SchemaTypeLoss : std::uint8_t
{
    none,
    innerType, ///< the simple type inside it is more than the text that it becomes
    otherType  ///< an earlier declaration of the same name holds
};

/// What a schema says where it declares something. Texts are views: they live as long as the documents of the import.
struct SchemaSaying
{
    SourcePlace place{};
    std::string_view name{}; ///< for a repeated element followed by "*"
    std::string_view type{};
    bool isReference = false;  ///< it is read through `ref`
    bool isSingle = false;     ///< it doesn't repeat when it is declared twice
    bool isInRepeated = false; ///< it stands in a group that repeats
    SchemaTypeLoss loss = SchemaTypeLoss::none;
};

/// One entry of a table: a declaration that was read, and what was declared inside it. Its key is the parent's key
/// followed directly by the name, with no separator, so that "Or" with "derline" and "Order" with "line" are one key.
class SchemaElement
{
public:
    /// `parentName` is the text of the parent's key; empty for an entry without a parent.
    SchemaElement(const Fingerprint& key, std::string_view parentName, const SchemaSaying& said);

    const Fingerprint& queryKey() const { return key; }

    /// The declared name; for a repeated element followed by "*".
    std::string_view queryName() const { return {name, nameSize}; }
    std::string_view queryType() const { return {type, typeSize}; }

    /// Takes the type of an earlier declaration, which may be another one than its own.
    void setType(std::string_view earlier, bool isOther)
    {
        type = earlier.data();
        typeSize = static_cast<std::uint32_t>(earlier.size());
        if (isOther)
            loss = SchemaTypeLoss::otherType;
    }

    SourcePlace queryPlace() const { return place; }
    bool isReference() const { return isReferring; }
    bool isInRepeated() const { return isOfRepeated; }

    SchemaTypeLoss queryLoss() const { return loss; }

    /// True when the text of the key, without white space at its ends, is longer than the "*" that it ends with.
    bool isMarked() const { return marked; }

    using Children = std::vector<SchemaElement*>;

    /// Appends the key of a child by the entry that has it; the same one may stand more than once.
    void addChild(SchemaElement* child)
    {
        if (!children) {
            children = std::make_unique<Children>();
            children->reserve(8); // most records have some
        }
        children->push_back(child);
    }

    /// Null without children.
    Children* queryChildren() const { return children.get(); }

    /// How an entry of the include table got into the element table too.
    enum Pull : std::uint8_t
    {
        notPulled,
        pulledAsType,
        pulledAsChild ///< its own children may be missing there
    };
    void setPull(Pull how) { pull = how; }
    Pull queryPull() const { return pull; }

private:
    // Large tables wait for each entry, so one fits into a cache line.
    Fingerprint key;
    const char* name;
    const char* type;
    std::uint32_t nameSize; // of a document, which is shorter than 4 GB
    std::uint32_t typeSize;
    std::unique_ptr<Children> children; // most entries have none
    SourcePlace place;
    Pull pull = notPulled;
    bool marked : 1;
    bool isReferring : 1;
    bool isOfRepeated : 1;
    SchemaTypeLoss loss;
};
