#pragma once

#include "Base/LargePages.h"
#include "Base/NumberTable.h"
#include "Import/Full/ContentModel.h"
#include "Import/Schema/Full/NodeTable.h"
#include "Import/Schema/Full/SchemaSet.h"

#include <span>

/// A field of a complex type. SchemaTypes works out its type from the declaration.
struct SchemaField
{
    SchemaName name;
    SchemaNode::Index declaration = 0; ///< 0 if the reference leads to nothing
    SourceTypes::Role role = SourceTypes::roleElement;
    bool repeats = false;
    std::uint32_t documentation = 0; ///< number of the documentation at the reference; 0 if there is none
};

/// Works out the elements and attributes of complex types: inherited ones, those of groups, and the members of
/// substitution groups. Each type is worked out once, without recursion. Wildcards, unresolved references and the like
/// become notes of the set.
class SchemaContents
{
public:
    using Index = SchemaNode::Index;

    /// Make it after SchemaSet::finish(). The set must outlive this object.
    explicit SchemaContents(SchemaSet& set);

    /// Returns the fields of a complex type, elements first, each name once for elements and once for attributes. Valid
    /// until the next call. Throws SourceRefusal beyond a million fields of all types.
    std::span<const SchemaField> of(Index type);

    /// Returns the declaration that gives a declaration its type: itself, or a head of its substitution groups. Returns
    /// 0 if it has no type.
    Index typedBy(Index declaration);

    /// Counts a step of work that may be quadratic in the schema, or grow exponentially. Throws SourceRefusal beyond
    /// 20,000,000 steps.
    void spendStep();

private:
    // The fields of a type, as a range of `kept`.
    struct Content
    {
        std::size_t first = 0;
        std::size_t elements = 0;
        std::size_t attributes = 0;
    };

    // A group whose particles are being walked: a sequence, choice, all or group definition, or the whole content.
    struct Frame
    {
        Index next;      // the next particle to visit
        Index group = 0; // the group definition, if entered by reference
        bool repeats = false;
    };

    // The fields of the current type in order, with lookup by name. Few fields are searched linearly; a table is filled
    // once there are many.
    class Fields
    {
    public:
        void clear();
        SchemaField* find(SchemaName name);
        SchemaField& add(const SchemaField& field);
        std::size_t positionOf(const SchemaField& field) const { return static_cast<std::size_t>(&field - all.data()); }

        std::vector<SchemaField> all;

    private:
        NumberTable many; // positions by name
    };

    Index baseOf(Index type);
    void build(Index type, Index base);
    void inherit(const Content& base, bool withElements);
    void walkParticles(Index holder);
    void visitParticle(Index particle);
    void enter(const Frame& frame, ContentModel::Group kind);
    void enterGroup(Index reference);
    SchemaName localName(Index declaration, bool SchemaDocument::*isQualifiedByDefault) const;
    void addElement(Index particle);
    void addOccurrence(SchemaName name, Index declaration, bool repeats, std::uint32_t documentation);
    void addSubstitutes(SchemaName head, Index declaration, bool repeats, std::uint32_t documentation);
    void walkAttributes(Index holder, Index type);
    void visitAttribute(Index attribute);
    void addAttribute(SchemaName name, Index declaration, bool isProhibited, std::uint32_t documentation);
    Index typeNamedBy(Index at) const;
    Index typeOf(Index declaration);
    bool isBlocked(Index head, Index member);
    bool areEquivalent(Index one, Index other);
    Content keep();

    SchemaSet& set;
    const SchemaTree& tree;
    NodeTable<Content> contents;                 // includes types in progress, which count as empty
    std::unordered_map<Index, Index> typedHeads; // elements without a type, by their typed head; 0 if there is none
    // The fields of all types so far. Fields are never removed, but move when the list grows.
    std::vector<SchemaField, LargePages<SchemaField>> kept;

    // State of the current type.
    Fields elements;
    Fields attributes;
    std::size_t inherited = 0; // number of inherited attributes
    bool isRestriction = false;
    ContentModel model;        // a name in it is the position of an element
    std::vector<Frame> frames; // a stack
    std::vector<Index> waiting;
    std::vector<bool> isEntered; // by node: groups that have been entered
    std::size_t steps = 0;
};
