#pragma once

#include "Import/Json/JsonTypes.h"

/// Makes types from Avro schemas (Apache Avro 1.11.1). Named types are identified by their full names, and are declared
/// before anything refers to them.
///
/// The order of calls: declareAll() for all documents, then addCandidate() or readProtocol() for each, then
/// addNamedTypes() if main types are requested, then finish(). Functions throw SourceRefusal beyond 20,000,000 visited
/// parts, and Cancelled.
class AvroTypes
{
public:
    using Index = JsonNode::Index;
    using Shape = JsonTypes::Shape;

    /// All must outlive this object. `names` adapts names to the model and stores the candidates.
    AvroTypes(JsonDocuments& documents, JsonTypes& names, SourceTypes& types, SourceReport& report) :
        documents(documents), tree(documents.tree), names(names), types(types), report(report)
    {}

    /// Declares the named types in `document`, a schema or a protocol, so that schemas may refer to them from anywhere.
    void declareAll(Index document);

    /// Returns whether a document is a protocol, or a schema with a type that Avro or a declared name defines.
    bool isSource(Index document);

    /// Declares the named types in `schema`. Its top-level records become candidates for main types; so does a value of
    /// any other kind, under `name`, which must live as long as the types.
    void addCandidate(Index schema, std::string_view name);

    /// Reads the types of a protocol, which must be declared. The requests and responses of its messages become
    /// candidates; without messages, all types.
    void readProtocol(Index protocol);

    /// Makes all named types candidates, so that each may be requested by its full name.
    void addNamedTypes();

    /// Reads the fields of all records. Call it last.
    void finish();

private:
    // The namespace of a named type and its name in it, joined().
    using FullName = std::uint64_t;

    // A schema, and its enclosing namespace.
    struct Scoped
    {
        Index schema = 0;
        NameTable::Id space = 0;
    };

    // The alternatives of a value by kind.
    struct Sorted
    {
        std::vector<Scoped> records, maps, arrays, leaves;
        bool hasNull = false;
    };

    // A record whose fields are not yet read: those of records, the value of a map, or the parameters of a message.
    struct Pending
    {
        std::vector<Scoped> schemas;
        SourceTypes::Index record = 0;
    };

    // Find and compare declarations, see AvroNames.cpp.
    void declareAll(Scoped top);
    bool declare(Scoped& at);
    NameTable::Id spaceOf(Scoped at);
    bool isSame(Scoped one, Scoped other);
    Index find(Index holder, JsonWord key, JsonNode::Kind kind = JsonNode::none, bool isOptional = false);
    void readMessage(Index member, NameTable::Id space);
    void readDeclared(std::string_view name);
    FullName fullNameOf(std::string_view name, NameTable::Id space);
    const Scoped* declarationOf(std::string_view type, NameTable::Id space);
    std::optional<Shape> shapeOf(std::vector<Scoped> alternatives, std::string_view name, SourceTypes::Index home);
    Sorted sortByKind(std::vector<Scoped> alternatives);
    bool isKnown(Index leaf) const;
    void checkNames(const std::vector<Scoped>& leaves);
    void spendStep();
    std::string_view simpleNameOf(Index schema);
    SourceTypes::Index modelSpaceOf(NameTable::Id space);
    std::string_view typeOf(Index schema) const;
    SourceTypes::Type recordOf(const std::vector<Scoped>& schemas, std::string_view name, SourceTypes::Index home);
    std::optional<SourceTypes::Type> leafOf(const std::vector<Scoped>& leaves, std::string_view name);
    SourceTypes::Type enumerationOf(const std::vector<Scoped>& leaves, std::string_view name);
    std::optional<SourceTypes::Kind> kindOf(Index schema) const;
    void readFields(const Pending& pending);
    std::string_view describe(Index schema)
    {
        return names.descriptionOf(tree.find(schema, JsonWord::doc, JsonNode::string), false);
    }

    JsonDocuments& documents;
    JsonTree& tree;
    JsonTypes& names;
    SourceTypes& types;
    SourceReport& report;
    std::unordered_map<FullName, Scoped, NumberHash> named;
    std::vector<Scoped> order; // named types in order of declaration, until they are read
    // By schema: a named type itself or an earlier equal one, with its own namespace; nothing for any other schema.
    std::unordered_map<Index, Scoped> declared;
    std::map<std::vector<Index>, SourceTypes::Type> records;   // by the sorted schemas that they come from
    std::unordered_map<Index, SourceTypes::Type> enumerations; // by schema, if that is the only one and has a name
    std::unordered_map<NameTable::Id, SourceTypes::Index> spaces;
    std::vector<Pending> pending;
    std::size_t steps = 0;         // see spendStep()
    CancelPoint cancelPoint{4096}; // passed by each step
};
