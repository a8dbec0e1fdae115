#pragma once

#include "Import/Json/JsonContents.h"

#include <unordered_set>

/// Says what JSON Schemas declare: the records and enumerations of the schemas that it is asked for, and all that they
/// reach.
class JsonTypes
{
public:
    using Index = JsonNode::Index;

    /// The type of a value; in tables inside each other when `depth` isn't 0.
    struct Shape
    {
        SourceTypes::Type type;
        std::uint16_t depth = 0;

        friend bool operator==(const Shape&, const Shape&) = default;
    };

    JsonTypes(JsonDocuments& documents, SourceTypes& types, SourceReport& report) :
        documents(documents), tree(documents.tree), types(types), contents(documents, types, report), report(report)
    {}

    /// The document, by its position in the set, that the next candidates are noted for.
    void setSource(Index position) { source = position; }

    /// The type of what `schema` describes. What has no name of its own is called `name`; `home` is the record inside
    /// which it stands.
    Shape shapeOf(Index schema, std::string_view name, SourceTypes::Index home = SourceTypes::kNone);

    /// Declares the schemas that the members of `holder` are, so that they are imported whoever uses them; with
    /// `asCandidates` a message may start with them, too.
    void declareMembers(Index holder, bool asCandidates);

    /// Lets a message start with what `schema` describes, which is called `name` when it has no name of its own.
    void addCandidate(Index schema, std::string_view name);

    /// The same for the body of a message: a schema that is declared keeps its name, a leaf is no message.
    void addBody(Index schema, const CString& name);

    /// The same for a type that was read otherwise.
    void addCandidate(Shape shape, std::string_view name, SourcePlace place);

    /// The name of a schema that is declared: its key, else its title, else its document; "" for any other.
    std::string_view nameOf(Index schema);

    /// Gives all records their fields.
    void finish();

    /// A name as the types can have it; a change is noted.
    std::string_view fit(std::string_view name, Index place) { return fit(name, tree.placeOf(place), types, report); }
    static std::string_view fit(std::string_view name, SourcePlace place, SourceTypes& types, SourceReport& report);

private:
    struct Pending
    {
        JsonContent content;
        SourceTypes::Index record;
    };

    bool isCalledByItsKey(Index schema) const;
    SourceTypes::Type recordOf(const JsonContent& content, std::string_view name, SourceTypes::Index home);
    SourceTypes::Type enumerationOf(const JsonContent& content, std::string_view name);
    void readFields(const Pending& pending);
    SourceTypes::Field fieldOf(std::string_view name, Index schema, SourceTypes::Index record);
    std::string_view describe(Index schema);

    JsonDocuments& documents;
    JsonTree& tree;
    SourceTypes& types;
    JsonContents contents;
    SourceReport& report;
    std::unordered_map<Index, SourceTypes::Type> records;               // by owner
    std::unordered_map<std::uint64_t, SourceTypes::Index> enumerations; // by owner and name
    std::unordered_map<Index, std::string_view> names;
    std::unordered_map<NameTable::Id, std::string_view> keptNames;
    std::unordered_map<NameTable::Id, std::string_view> descriptions;
    std::unordered_set<std::uint64_t> candidates; // by source and record
    Index source = 0;
    std::vector<Pending> pending;
    std::vector<JsonField> inHand;
    std::vector<SourceTypes::Field> fields;
    CancelPoint cancelPoint{4096};
};
