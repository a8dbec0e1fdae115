#pragma once

#include "Platform/Text.h"

#include <cstdint>
#include <memory>
#include <vector>

/// The key of a table entry: the parent's key followed directly by the name, with no separator, so that "Or" with
/// "derline" and "Order" with "line" are one key. The two are kept apart, since a record with a long name and many
/// fields would otherwise repeat it in each of them; the hash is that of the joined text.
struct SchemaKey
{
    std::string_view parent;
    std::string_view name;
    std::uint32_t hash;

    /// A key without a parent.
    explicit SchemaKey(std::string_view name);

    /// A key under an entry whose own key is `parent` with the hash `parentHash`.
    SchemaKey(std::string_view parent, std::uint32_t parentHash, std::string_view name);

    /// True when the joined texts are equal.
    bool operator==(const SchemaKey& other) const;

    /// True when the joined text, without white space at its ends, is longer than the "*" that it ends with.
    bool isMarked() const;
};

inline std::size_t keyHash(const SchemaKey& key)
{
    return key.hash;
}

/// One entry of a table: a declaration that was read, and what was declared inside it. Texts are views: they live as
/// long as the documents of the import.
class SchemaElement
{
public:
    SchemaElement(const SchemaKey& key, std::string_view type) : key(key), type(type) {}

    const SchemaKey& queryKey() const { return key; }

    /// The declared name; for a repeated element followed by "*".
    std::string_view queryName() const { return key.name; }
    std::string_view queryType() const { return type; }

    using Children = std::vector<SchemaElement*>;

    /// Appends the key of a child by the entry that has it; the same one may stand more than once.
    void addChild(SchemaElement* child)
    {
        if (!children)
            children = std::make_unique<Children>();
        children->push_back(child);
    }

    /// Null without children.
    Children* queryChildren() const { return children.get(); }

    /// How an entry of the include table got into the element table too.
    enum Pull
    {
        notPulled,
        pulledAsType,
        pulledAsChild ///< its own children may be missing there
    };
    void setPull(Pull how) { pull = how; }
    Pull queryPull() const { return pull; }

private:
    SchemaKey key;
    std::string_view type;
    std::unique_ptr<Children> children; // most entries have none
    Pull pull = notPulled;
};
