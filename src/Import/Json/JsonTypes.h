#pragma once

#include "Base/NumberTable.h"
#include "Import/Json/JsonContents.h"

#include <set>
#include <unordered_set>

/// Makes types from JSON Schemas: the records and enumerations of the requested schemas, and of all they refer to.
///
/// A record is added when a field first needs it, and its fields are read in finish(), so that records may contain each
/// other, and nesting needs no recursion.
class JsonTypes
{
public:
    using Index = JsonNode::Index;

    /// The type of a value. `depth` is the number of nested tables around it; 0 for none.
    struct Shape
    {
        SourceTypes::Type type;
        std::uint16_t depth = 0;

        friend bool operator==(const Shape&, const Shape&) = default;
    };

    /// The maximum number of nested tables; the name of each is longer by "t_".
    static constexpr std::uint16_t kMaxDepth = 100;

    /// Places identify schemas in both passes of JsonMessage::read().
    using Places = std::set<SourcePlace>;

    /// With `wanted`, only the candidates at these places are read, and what they refer to. All must outlive this
    /// object.
    JsonTypes(JsonDocuments& documents, SourceTypes& types, SourceReport& report, const Places* wanted = nullptr) :
        documents(documents), tree(documents.tree), types(types), contents(documents, types, report), report(report),
        wanted(wanted)
    {}

    /// Returns whether a schema that no field refers to is read.
    bool isWanted(Index schema) const { return !wanted || wanted->contains(tree[schema].place); }

    /// Sets the position in the set of the document that further candidates count for.
    void setSource(Index position) { source = position; }
    /// Returns that position; 0 at first.
    Index querySource() const { return source; }

    /// Returns the type of a schema; text if it is not wanted and has no `home`. A schema without its own name is
    /// called `name`, inside the record `home`, if that is given. `name` must live as long as the types. Throws
    /// SourceRefusal, as JsonContents::of() does.
    Shape shapeOf(Index schema, std::string_view name, SourceTypes::Index home = SourceTypes::kNone);

    /// Names schemas of other documents after the key under `holder` that refers to them. Call it before types are
    /// read.
    void nameReferred(Index holder);

    /// Returns whether a document has a type of its own, instead of definitions only.
    bool hasOwnType(Index root);

    /// Adds the types of all schemas under `holder`, so that unused ones are imported as well. With `asCandidates` they
    /// become candidates for main types.
    void declareMembers(Index holder, bool asCandidates);

    /// Keeps declareMembers() from reading a schema, because it is in another language.
    void leaveOut(Index schema) { foreign.insert(schema); }

    /// Makes the schemas called `name` that the document of `root` declares candidates: itself, and its definitions.
    void addDeclared(Index root, std::string_view name);

    /// Makes the type of a schema a candidate for a main type. It is called `name` if it has no name of its own.
    void addCandidate(Index schema, std::string_view name);

    /// The same for the body of a message. Only with `mayBeValue` anything but an object becomes a candidate.
    void addBody(Index schema, const CString& name, bool mayBeValue = false);

    /// The same for a type of the namespace `uri` that was made elsewhere. A record is called by its own name. `name`
    /// and `uri` must live as long as the types.
    void addCandidate(Shape shape, std::string_view name, SourcePlace place, std::string_view uri = {});

    /// Returns the name of a declared schema: its key, else its title, else the name of its document. Empty for other
    /// schemas.
    std::string_view nameOf(Index schema);

    /// Returns a string of the tree, or its first sentence, as the description of a type or field; empty for node 0.
    std::string_view descriptionOf(Index text, bool isFirstSentence);

    /// Reads the fields of all records that were added since the last call. Call it last; adding types afterwards needs
    /// another call.
    void finish();

    /// Returns a name with the characters replaced that types can't have; a changed name is reported. The view lives as
    /// long as the types.
    std::string_view toModelName(std::string_view name, Index place)
    {
        return toModelName(name, tree[place].place, types, report);
    }
    static std::string_view toModelName(std::string_view name, SourcePlace place, SourceTypes& types,
                                        SourceReport& report);

private:
    // A record whose fields are not read yet.
    struct Pending
    {
        JsonContent content;
        SourceTypes::Index record;
    };

    std::string_view nameOf(Index schema, std::string_view name);
    SourceTypes::Type recordOf(const JsonContent& content, std::string_view name, SourceTypes::Index home);
    SourceTypes::Type enumerationOf(const JsonContent& content, std::string_view name);
    void readFields(const Pending& pending);
    void addRequired(const JsonContent& content);
    SourceTypes::Field fieldOf(std::string_view name, Index schema, SourceTypes::Index record);
    std::string_view describe(Index schema);

    JsonDocuments& documents;
    JsonTree& tree;
    SourceTypes& types;
    JsonContents contents;
    SourceReport& report;
    const Places* const wanted;
    std::unordered_map<Index, SourceTypes::Type> records; // by the owner of the content
    NumberTable enumerations;                             // by owner, else by first constant and name
    std::unordered_map<Index, std::string_view> names;
    std::unordered_map<NameTable::Id, std::string_view> keptNames;                // fitted field names
    std::unordered_map<std::uint64_t, std::string_view, NumberHash> descriptions; // see descriptionOf()
    std::unordered_set<Index> foreign;                                            // left out by leaveOut()
    std::unordered_set<std::uint64_t, NumberHash> candidates;                     // by source and record
    Index source = 0;
    std::vector<Pending> pending;
    std::size_t finished = 0;               // of these
    std::vector<SourceTypes::Field> fields; // of the current record; a buffer
};
