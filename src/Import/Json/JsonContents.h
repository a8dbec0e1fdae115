#pragma once

#include "Base/Progress.h"
#include "Import/Json/JsonDocuments.h"

#include <map>
#include <span>

/// A property that a schema knows.
struct JsonField
{
    NameTable::Id name = 0;
    JsonNode::Index schema = 0;
};

/// What the values of a schema are.
struct JsonContent
{
    enum Kind : std::uint8_t
    {
        none, ///< the schema says nothing of it
        text,
        number,
        time,
        enumeration,
        record, ///< maybe without fields
        map,    ///< an object with properties of any name
        array
    };

    Kind kind = none;
    bool isAlsoLeaf = false;   ///< an array, or else a text or number
    JsonNode::Index owner = 0; ///< the schema whose type it is
    JsonNode::Index items = 0; ///< the schema of an array's items or a map's values; 0 for any
    std::uint32_t first = 0;   ///< of the fields or constants
    std::uint32_t count = 0;
};

/// The contents of schemas: what references lead to and what allOf, oneOf, anyOf and conditions say together. Each
/// schema's is worked out once, without recursion. An array of schemas is the choice between them.
class JsonContents
{
public:
    using Index = JsonNode::Index;

    JsonContents(JsonDocuments& documents, const SourceTypes& types, SourceReport& report) :
        documents(documents), tree(documents.tree), types(types), report(report)
    {}

    /// What a schema says. Throws SourceRefusal where one is made of itself.
    JsonContent of(Index schema);

    /// The fields of a record and the constants of an enumeration; valid until the next of().
    std::span<const JsonField> fieldsOf(const JsonContent& record) const
    {
        return std::span(fields).subspan(record.first, record.count);
    }
    std::span<const NameTable::Id> constantsOf(const JsonContent& enumeration) const
    {
        return std::span(constants).subspan(enumeration.first, enumeration.count);
    }

    /// Whether a schema is declared by name, or a document.
    bool isDeclared(Index schema) const;

private:
    // How a part joins what there is of its schema already.
    enum How : std::uint8_t
    {
        both,   // it holds beside that
        either, // it is another alternative
        maybe,  // it holds at times: adds what is missing
        own     // not a schema: the properties of this one
    };

    struct Part
    {
        Index node;
        How how;
    };

    // A field, and what is said of it further.
    struct MergedField : JsonField
    {
        std::vector<Part> more;
    };

    // What a schema is made of that was made here.
    struct Merged
    {
        How how;
        std::vector<Index> members;
        int rank = 0; // how many such schemas are inside each other
    };

    // A schema whose parts are being looked at.
    struct Frame
    {
        Index node;
        std::vector<Part> parts;
        std::size_t next = 0;
        JsonContent content;
        bool isBorrowed = false; // fields and constants are still those of the only part that has any
        bool isReference = false;
        Index mapping = 0; // of a discriminator
        NameTable::Id discriminator = 0;
        std::vector<MergedField> fields;
        std::unordered_map<NameTable::Id, std::size_t> many;
        std::vector<NameTable::Id> constants;
    };

    // What one schema says itself of its values, collected from its keywords.
    struct Own
    {
        Index type = 0;
        NameTable::Id format = 0;
        std::vector<Index> values; // that are listed
        bool isListed = false;
        bool hasItems = false;
        bool hasProperties = false;
        std::vector<Index> items;
        std::vector<Index> mapValues;
    };

    void enter(Index schema);
    void readSchema(Frame& frame);
    void readKeyword(Frame& frame, Index child, Own& own);
    void readReference(Frame& frame, Index child);
    void readDiscriminator(Frame& frame, Index node);
    void readMembers(Index holder, How how, std::vector<Part>& parts) const;
    void countDetail(JsonWord key);
    void countOptional(Index schema, Index properties);
    void readOwn(Frame& frame, Own& own);
    JsonContent contentOfType(JsonWord type, Frame& frame, Own& own);
    JsonContent contentOfValues(Frame& frame, const Own& own, bool isText);
    Index choiceOf(const std::vector<Index>& schemas);
    void finish();
    void overrideDiscriminator(Frame& frame);
    void join(Frame& frame, const JsonContent& added, How how, Index part);
    void joinBoth(Frame& frame, const JsonContent& added, How how, Index part);
    void joinEither(Frame& frame, const JsonContent& added, Index part);
    void take(Frame& frame, const JsonContent& added);
    void makeOwn(Frame& frame);
    void addOwnFields(Frame& frame, Index properties);
    void addField(Frame& frame, JsonField field, How how);
    bool sayTheSame(Index one, Index other) const;
    bool isLeafOf(Index schema, NameTable::Id& type, NameTable::Id& format) const;
    Index baseOf(Index schema);
    Index mergedOf(Index first, std::span<const Part> more);
    Index makeMerged(const Merged& merged);
    Index addAlias(Index parent, Index last, JsonWord key, Index target);
    void step(std::size_t count = 1);

    JsonDocuments& documents;
    JsonTree& tree;
    const SourceTypes& types;
    SourceReport& report;
    std::unordered_map<Index, JsonContent> contents;
    std::unordered_map<Index, bool> inHand;
    std::vector<JsonField> fields;
    std::vector<NameTable::Id> constants;
    std::unordered_map<Index, Merged> madeOf;
    std::map<std::pair<How, std::vector<Index>>, Index> merges; // by what they are made of, in order
    std::vector<Frame> frames;
    std::size_t steps = 0;
    CancelPoint cancelPoint{4096};
};
