#pragma once

#include "Import/Schema/Full/NodeTable.h"
#include "Import/Schema/Full/SchemaSet.h"

#include <span>

/// A field of a complex type, before its own type is known.
struct SchemaField
{
    SchemaName name;
    SchemaNode::Index declaration = 0; ///< 0 for a reference to nothing that was read
    SourceTypes::Role role = SourceTypes::roleElement;
    bool repeats = false;
    std::uint32_t documentation = 0; ///< at the reference
};

/// The elements and attributes of complex types: what they inherit, what their groups hold and what may stand for the
/// head of a substitution group. Each type's are worked out once, without recursion.
class SchemaContents
{
public:
    using Index = SchemaNode::Index;

    explicit SchemaContents(SchemaSet& set);

    /// The fields of a complex type, elements first; valid until the next call.
    std::span<const SchemaField> of(Index type);

    /// Counts a step of work that a schema can make grow as its square; what passes 20,000,000 is refused.
    void spendStep();

private:
    // A type's fields among all.
    struct Content
    {
        std::size_t first = 0;
        std::size_t elements = 0;
        std::size_t attributes = 0;
    };

    // A group whose particles are being walked, of whatever sort; the whole content is one, too.
    struct Frame
    {
        Index next;      // the next particle
        Index group = 0; // the definition, for what is held by reference
        bool isChoice = false;
        std::uint8_t times = 1;
        std::size_t entered = 0; // when, by `clock`
    };

    // Fields that are found by name: few are looked for one by one.
    class Fields
    {
    public:
        void clear();
        SchemaField* find(SchemaName name);
        SchemaField& add(const SchemaField& field);
        std::size_t positionOf(const SchemaField& field) const { return static_cast<std::size_t>(&field - all.data()); }

        std::vector<SchemaField> all;

    private:
        std::unordered_map<std::uint64_t, std::size_t> many;
    };

    Index baseOf(Index type);
    void build(Index type, Index base);
    void inherit(const Content& base, bool withElements);
    void walkParticles(Index holder);
    void visitParticle(Index particle);
    void enterGroup(Index reference, std::uint8_t times);
    void addElement(Index particle, std::uint8_t times);
    void addOccurrence(SchemaName name, Index declaration, std::uint8_t times, std::uint32_t documentation);
    void addSubstitutes(SchemaName head, Index declaration, std::uint8_t times, std::uint32_t documentation);
    void walkAttributes(Index holder);
    void visitAttribute(Index attribute);
    void addAttribute(SchemaName name, Index declaration, bool isProhibited, std::uint32_t documentation);
    bool sayTheSame(Index one, Index other) const;
    Content keep();

    SchemaSet& set;
    const SchemaTree& tree;
    NodeTable<Content> contents; // also of the types in hand, which count as empty
    std::vector<SchemaField> kept;

    // Of the type in hand.
    Fields elements;
    Fields attributes;
    std::size_t inherited = 0; // of the attributes
    bool isRestriction = false;
    std::vector<std::size_t> lastSeen; // by element: when it occurred last
    std::vector<Frame> frames;
    std::size_t clock = 0;
    std::vector<Index> waiting;
    std::vector<bool> inHand; // by node: groups
    std::size_t steps = 0;
};
