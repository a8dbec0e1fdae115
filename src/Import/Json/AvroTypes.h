#pragma once

#include "Import/Json/JsonTypes.h"

/// Says what Avro schemas declare (Apache Avro 1.11.1). Named types are known by their full names, and are declared
/// before they are referred to.
class AvroTypes
{
public:
    using Index = JsonNode::Index;
    using Shape = JsonTypes::Shape;

    AvroTypes(JsonDocuments& documents, JsonTypes& names, SourceTypes& types, SourceReport& report) :
        documents(documents), tree(documents.tree), names(names), types(types), report(report)
    {}

    /// Lets schemas refer to the named types in `document`, a schema or a protocol, wherever they stand.
    void declareAll(Index document);

    /// Declares the named types in `schema`. A message may start with the records among them that stand at its top, or
    /// with a value of any other sort, which is called `name`.
    void addCandidate(Index schema, std::string_view name);

    /// The types of a protocol; the requests and responses of its messages are what a message may start with.
    void readProtocol(Index protocol);

    /// Lets a message start with any named type.
    void addAllCandidates();

    /// Gives all records their fields.
    void finish();

private:
    // A schema, and the namespace in which it stands.
    struct Scoped
    {
        Index schema = 0;
        NameTable::Id space = 0;
    };

    // What the alternatives of a value are, sorted out.
    struct Sorted
    {
        std::vector<Scoped> records, maps, arrays, leaves;
    };

    // A record that waits for its fields: those of records, or the value of a map, or the parameters of a message.
    struct Pending
    {
        std::vector<Scoped> schemas;
        SourceTypes::Index record = 0;
        bool isMap = false;
    };

    void declareAll(Scoped top);
    void declare(Scoped& at);
    NameTable::Id fullNameOf(std::string_view name, NameTable::Id space);
    std::optional<Shape> shapeOf(std::vector<Scoped> alternatives, std::string_view name, SourceTypes::Index home);
    Sorted sort(std::vector<Scoped> alternatives);
    void spendStep();
    void sortOut(Scoped at, std::string_view type, Sorted& sorted);
    SourceTypes::Type recordOf(const std::vector<Scoped>& schemas, bool isMap, std::string_view name,
                               SourceTypes::Index home);
    std::optional<SourceTypes::Type> leafOf(const std::vector<Scoped>& leaves, std::string_view name);
    SourceTypes::Type enumerationOf(const std::vector<Scoped>& leaves, std::string_view name);
    std::optional<SourceTypes::Kind> kindOf(Index schema) const;
    void readFields(const Pending& pending);
    void readMessage(Index message);
    std::string_view describe(Index schema);

    JsonDocuments& documents;
    JsonTree& tree;
    JsonTypes& names;
    SourceTypes& types;
    SourceReport& report;
    std::unordered_map<NameTable::Id, Scoped> named; // by full name
    std::vector<Scoped> order;
    std::unordered_map<Index, NameTable::Id> spaces; // of named types
    std::unordered_set<Index> declared;
    std::map<std::vector<Index>, SourceTypes::Type> records; // by what they are made of
    std::vector<Pending> pending;
    std::size_t steps = 0;
    CancelPoint cancelPoint{4096}; // passed by each step
};
