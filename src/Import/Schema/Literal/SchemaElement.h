#pragma once

#include "Base/Fingerprint.h"

#include <memory>
#include <vector>

/// One entry of a table: a declaration that was read, and what was declared inside it. Its key is the parent's key
/// followed directly by the name, with no separator, so that "Or" with "derline" and "Order" with "line" are one key.
/// Texts are views: they live as long as the documents of the import.
class SchemaElement
{
public:
    /// `parentName` is the text of the parent's key; empty for an entry without a parent.
    SchemaElement(const Fingerprint& key, std::string_view parentName, std::string_view name, std::string_view type);

    const Fingerprint& queryKey() const { return key; }

    /// The declared name; for a repeated element followed by "*".
    std::string_view queryName() const { return name; }
    std::string_view queryType() const { return type; }

    /// True when the text of the key, without white space at its ends, is longer than the "*" that it ends with.
    bool isMarked() const { return marked; }

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
    Fingerprint key;
    std::string_view name;
    std::string_view type;
    std::unique_ptr<Children> children; // most entries have none
    Pull pull = notPulled;
    bool marked;
};
