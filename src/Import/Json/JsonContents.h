#pragma once

#include "Base/Progress.h"
#include "Import/Json/JsonDocuments.h"

#include <map>
#include <optional>
#include <span>
#include <unordered_set>

/// A property of a record, or a constant of an enumeration.
struct JsonMember
{
    NameTable::Id name = 0;
    JsonNode::Index schema = 0; ///< of a constant, the one that lists it alone, and so describes it; 0 if there is none
    bool isConditional = false; ///< the schema applies under a condition or in some alternatives only
};

/// The values that a schema describes.
struct JsonContent
{
    /// The kind of the values. A schema of several kinds gets one of them, see joinBoth() and joinEither().
    enum Kind : std::uint8_t
    {
        none, ///< the schema restricts nothing
        text,
        number,
        time,
        enumeration,
        record, ///< an object with known properties; may have none
        map,    ///< an object whose properties have any name
        array
    };

    Kind kind = none;
    bool mayBeLeaf = false;     ///< an array, or a single text or number
    bool isImplied = false;     ///< only a format or items imply the kind, which restricts no other kind
    bool isConditional = false; ///< applies under a condition or in some alternatives only
    JsonNode::Index owner = 0;  ///< the schema that the type belongs to
    JsonNode::Index items = 0;  ///< schema of an array's items or a map's values; 0 allows any
    std::uint32_t first = 0;    ///< index of the first member of a record or an enumeration
    std::uint32_t count = 0;
};

/// Works out the contents of schemas: follows references and combines allOf, oneOf, anyOf and conditions. Each schema
/// is worked out once, without recursion. An array of schemas means a choice between them.
///
/// The parts of a schema are worked out first, and then joined one by one into its content. If two parts have different
/// schemas for one field, or for the items of an array, these are combined into a made schema: an array of aliases in
/// the tree, whose key defines how they combine. It is worked out like any other schema, when its field is read. Made
/// schemas are looked up by their members, so that recursive schemas lead to existing ones. Three bounds stop endless
/// combinations: the nesting of made schemas, their nodes in proportion to the source, and the number of steps.
///
/// A condition adds the fields that it names, but narrows none, because a message need not meet it.
class JsonContents
{
public:
    using Index = JsonNode::Index;

    /// All must outlive this object. Made schemas are added to the tree of `documents`; `types` is used for refusals
    /// only.
    JsonContents(JsonDocuments& documents, const SourceTypes& types, SourceReport& report) :
        documents(documents), tree(documents.tree), types(types), report(report)
    {}

    /// Returns the content of a schema. Throws SourceRefusal if a schema consists of itself, or if a bound is exceeded.
    /// Losses and details are reported once, when the schema is worked out.
    JsonContent of(Index schema);

    /// Returns the members of a record or an enumeration. Valid until of() is called again.
    std::span<const JsonMember> membersOf(const JsonContent& content) const
    {
        return std::span(members).subspan(content.first, content.count);
    }

    /// Reads the schemas that were dropped in favour of an equal one, so that their details count. Call it last.
    void readDropped();

    /// Returns the target of a schema that is only a reference, perhaps with remarks; else the schema itself. Follows
    /// references to references.
    Index baseOf(Index schema);

private:
    // How a part combines with the content so far.
    enum How : std::uint8_t
    {
        both,   // applies in addition
        either, // is an alternative
        maybe,  // applies under a condition: adds missing fields, and narrows no others
        own     // is not a schema, but the properties of this one
    };

    struct Part
    {
        Index node;
        How how;
    };

    // A member with further schemas of the same name.
    struct MergedMember : JsonMember
    {
        std::vector<Part> more;
        std::size_t alternatives = 1; // that have it, of a choice
    };

    // A schema whose parts are being combined. Frames form the stack of of().
    struct Frame
    {
        Index node;
        std::vector<Part> parts;
        std::size_t next = 0; // index of the part to join next
        JsonContent content;
        bool isBorrowed = false;  // the members are those of a part, so that references copy nothing
        bool isReference = false; // consists of a reference, so the type keeps the name of its target
        std::size_t objects = 0;  // alternatives that are objects
        bool allowsAny = false;   // in one of the alternatives
        Index mapping = 0;        // the mapping of its discriminator, or 0
        NameTable::Id discriminator = 0;
        std::vector<MergedMember> members;
        NumberTable positions;   // of the members by name
        std::vector<Part> items; // further schemas of the items, merged at the end because there may be many
    };

    // A schema's own keywords, collected before they are combined, because their order in the document has no meaning.
    struct Own
    {
        Index type = 0;
        NameTable::Id format = 0;
        std::vector<Index> values; // of enum
        Index constant = 0;        // the only value, by const
        bool isListed = false;     // by enum or const
        bool hasItems = false;
        bool hasProperties = false;
        std::vector<Index> items;
        Index contained = 0; // schema of some items, if it may be an object
        std::vector<Index> mapValues;
    };

    // Puts a schema on the stack and lists its parts. Throws SourceRefusal if it is in progress, because only members
    // of objects and items of arrays, which are not parts, may refer back to it.
    void enter(Index schema);
    // Read the keywords of a schema, see JsonKeywords.cpp. Parts go into the frame, all else into `own`.
    void readSchema(Frame& frame);
    void readKeyword(Frame& frame, Index child, Own& own);
    void readDiscriminator(Frame& frame, Index node);
    void readItems(Index schema, JsonWord key, Index node, Own& own);
    void readReference(Frame& frame, Index child);
    Index referenced(Index child);
    void appendTargets(Index holder, std::vector<Index>& targets) const;
    void countOptional(Index schema, Index properties);
    std::vector<JsonWord> typesOf(Index type);
    void readOwn(Frame& frame, Own& own);
    JsonContent contentOfType(JsonWord type, Frame& frame, Own& own);
    Index choiceOf(const std::vector<Index>& schemas);
    bool isPlainReference(Index schema) const;
    bool isUnrestricted(Index schema) const;
    bool restrictsValues(Index schema) const;
    bool isBoolean(Index schema, std::string_view value) const
    {
        return tree.is(schema, JsonNode::boolean) && tree.text(schema) == value;
    }
    void finish();
    static bool isEmpty(const Frame& frame)
    {
        return frame.isBorrowed && frame.content.kind == JsonContent::record && frame.content.count == 0;
    }
    // Combine the content so far with that of `part`. Losses are reported at the part. Only records and enumerations
    // have members; only maps and arrays have items.
    void join(Frame& frame, const JsonContent& added, How how, Index part);
    void joinBoth(Frame& frame, const JsonContent& added, How how, Index part);
    void joinItems(Frame& frame, const JsonContent& added, How how);
    void joinEnumerations(Frame& frame, const JsonContent& added, Index part);
    void joinEither(Frame& frame, const JsonContent& added, Index part);
    void noteFurtherProperties(const Frame& frame, const JsonContent& map, Index part);
    void take(Frame& frame, const JsonContent& added);
    void mergeItems(Frame& frame);
    // Collect the members of a schema, see JsonMembers.cpp.
    void makeOwn(Frame& frame);
    void addMembers(Frame& frame, const JsonContent& content, How how);
    void addOwnFields(Frame& frame, Index properties);
    void addField(Frame& frame, JsonMember field, How how);
    void mergeField(MergedMember& known, JsonMember field, How how);
    JsonContent contentOfValues(Frame& frame, const Own& own, bool isText);
    void overrideDiscriminator(Frame& frame);
    void checkMapped(Index value);
    std::optional<std::pair<NameTable::Id, NameTable::Id>> leafOf(Index schema) const;
    // Combine the schemas of a member into made ones. The rank of a made schema is 0 if all its members are of the
    // source, else one more than the highest rank of its members. Members that combine in the same way are replaced by
    // their own members.
    Index mergedOf(Index schema, std::span<const Part> more);
    Index makeMerged(How how, const std::vector<Index>& members, int rank);
    // Counts visited parts. Throws SourceRefusal beyond a bound.
    void step(std::size_t count = 1);

    JsonDocuments& documents;
    JsonTree& tree;
    const SourceTypes& types;
    SourceReport& report;
    std::unordered_map<Index, std::optional<JsonContent>> contents; // nothing for schemas in progress
    std::vector<JsonMember> members;        // of all records and enumerations, one content after the other
    std::unordered_map<Index, Index> bases; // see baseOf(), by plain reference
    std::unordered_map<Index, int> ranks;   // nesting of made schemas
    std::map<std::pair<How, std::vector<Index>>, Index> merges; // made schemas by their sorted members
    std::unordered_set<Index> dropped;                          // leaves dropped in favour of an equivalent one
    std::vector<Frame> frames;
    std::size_t steps = 0; // see step()
    std::size_t made = 0;  // nodes of made schemas
    CancelPoint cancelPoint{4096};
};
