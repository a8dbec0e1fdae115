#pragma once

#include "Base/KeyedTable.h"
#include "Import/Schema/Full/SchemaTypes.h"

#include <optional>
#include <set>

/// The XML Schemas in descriptions of messages in another language, as in AsyncAPI. They form one set, so that types
/// that several messages share are one type. Use it in this order: add() for each schema, read(), and for requested
/// main types want() and readAlone().
class MessageSchemas
{
public:
    MessageSchemas(const SourceTypes& types, SourceReport& report, const Catalogs& catalogs) :
        set(types, report, catalogs), tree(set.queryTree()), report(report)
    {}

    /// Adds the schema of a message in the description with the number `source`; kNone if no message has it. Its text
    /// must live as long as this object. Does nothing after read().
    void add(const SchemaSet::Embedded& schema, SourceTypes::Index source)
    {
        if (all)
            return;
        schemas.push_back({schema, source});
        messageCount += source != SourceTypes::kNone;
    }

    /// Returns how many schemas of messages were added, including those that can't be read.
    std::size_t countMessages() const { return messageCount; }

    /// Reads all schemas. The candidates for main types are, for each message, the root element with the message's
    /// name, else all elements of its schema. With `roots` the constructs in the schemas are held back until
    /// readAlone().
    void read(SourceTypes& types, const std::vector<CString>& roots);

    /// Adds a requested main type to those of readAlone(), if a schema declares it. `candidate` is its number in the
    /// types of read().
    void want(SourceTypes::Index candidate);

    /// Reads only the wanted types into `alone`, and reports the constructs that they reach. The caller needs no other
    /// result, and drops `alone`.
    void readAlone(SourceTypes& alone);

private:
    using Index = SchemaNode::Index;

    struct Schema
    {
        SchemaSet::Embedded text;
        SourceTypes::Index source;
    };

    // The elements of a document.
    struct Elements
    {
        std::vector<Index> all;
        std::unordered_map<CString, Index, KeyHash> byName; // in lower case
        std::set<SourceTypes::Index> sources;               // with a message whose name none of them has
    };

    Elements elementsOf(std::uint32_t document, std::size_t& components) const;
    void addMains(SourceTypes& types, const Schema& message, Elements& elements);
    bool isReferred(Index element);
    void addMain(SourceTypes& types, Index element, SourceTypes::Index source);

    SchemaSet set;
    const SchemaTree& tree;
    SourceReport& report;
    std::vector<Schema> schemas;
    std::size_t messageCount = 0;
    std::optional<SchemaTypes> all;
    std::unordered_map<Index, SourceTypes::Index> candidates; // of `all`, by component
    std::unordered_set<Index> referred;                       // elements that a "ref" names
    std::set<std::pair<Index, SourceTypes::Index>> mains;     // elements and their sources
    std::vector<Index> wanted;                                // components
};
