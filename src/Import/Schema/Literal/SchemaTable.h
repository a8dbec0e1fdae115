#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"
#include "Base/NumberTable.h"
#include "Base/Progress.h"
#include "Import/Schema/Literal/SchemaElement.h"
#include "Import/Schema/Literal/SchemaOutline.h"

#include <array>
#include <deque>
#include <functional>
#include <tuple>
#include <utility>

/// The declarations of a schema by name; the outlines hold the texts. A schema is read in two passes. The first covers
/// the schema and every document that it includes, imports or redefines. The second covers the schema alone, and then
/// pulls types from the first that are named but not declared.
///
/// The rules of the literal reading are fixed, even strange ones, and docs/formats.md lists them. For each schema call
/// readIncluded(), readMain(), then the queries, then clear() before its outlines are destroyed.
class SchemaTable
{
public:
    /// The schema itself, followed by the documents that it refers to. A deque, because pointers to locations in an
    /// outline are kept while further outlines are added.
    using Outlines = std::deque<SchemaOutline>;
    /// Receives the error for a declaration that is skipped because it is directly inside one of its name.
    using CycleHandler = std::function<void(const SourceFault& fault)>;
    using Entries = KeyedTable<SchemaElement, &SchemaElement::queryKey, Fingerprint>;

    /// `report` gets the losses. Report and kinds must live as long as the table.
    SchemaTable(SourceReport& report, SchemaKinds& kinds, CycleHandler onCycle) :
        report(report), kinds(kinds), onCycle(std::move(onCycle))
    {}

    /// Runs the first pass, if the schema is a file, and finds the main element. `outlines` must not be empty; they are
    /// read, and all but the first are reduced to their texts. Until then the main element and root type of the
    /// previous schema stay in effect.
    void readIncluded(Outlines& outlines, bool isFile);

    /// Runs the second pass over the same schema, and reports its declarations that were not used.
    void readMain(const SchemaOutline& main);

    /// Removes everything except the names of main element and root type.
    void clear();

    /// The names that are kept from one schema to the next: main element, previous main element, root type. The
    /// importer restores them if an import is cancelled.
    using Names = std::array<CString, 3>;
    Names queryNames() const { return {mainType, earlierMainType, rootTypeName}; }
    void setNames(const Names& names) { std::tie(mainType, earlierMainType, rootTypeName) = std::tuple_cat(names); }

    /// Returns the main element's name; empty if there is none.
    const CString& queryMainType() const { return mainType; }

    /// Returns the type that the main element names; its entry has the main element's name.
    const CString& queryRootTypeName() const { return rootTypeName; }

    /// Return the entries in order: the declarations of the schema, then the pulled ones. Valid until clear().
    const Entries& queryDeclared() const { return schemaElements; }
    const std::deque<SchemaElement*>& queryPulled() const { return pulled; }

    /// Returns the components that fields name, as types or elements, pulled or not, as the keys of a table.
    NumberTable findReached() const;

    /// Returns the entry for a key, declared or pulled; null if there is none.
    const SchemaElement* find(const Fingerprint& key) const;

    /// Returns whether the literal reading takes a type for a built-in one.
    static bool isBuiltIn(std::string_view type) { return type.starts_with("xs:") || type.starts_with("xsd:"); }

    /// Returns the entry of a type; null for a built-in type and if there is none.
    const SchemaElement* findType(std::string_view type) const
    {
        return type.empty() || isBuiltIn(type) ? nullptr : find(type);
    }

    /// Prefetches the slots where findType() begins.
    void prefetchType(std::string_view type) const
    {
        if (type.empty() || isBuiltIn(type))
            return;
        const std::uint32_t hash = keyHash(type);
        schemaElements.prefetch(hash);
        includedElements.prefetch(hash);
    }

    /// The same as find(); also finds included entries that were not pulled.
    const SchemaElement* findAny(const Fingerprint& key) const;

    /// Returns the main element in the schema's outline; kNone if there is none.
    SchemaOutline::Index queryMainElement() const { return mainElement; }

private:
    using Index = SchemaOutline::Index;
    struct TypeWalk;

    // The current complex type: its name, which is its key, its entry, null if it was rejected, and the number of
    // children to expect.
    struct Record
    {
        std::string_view name;
        RunningHash key;
        SchemaElement* entry = nullptr;
        std::size_t expected = 0;
    };

    // The declarations that are prefetched next, in document order, and the name of the complex type before them.
    struct Ahead
    {
        Index next = 0;
        Index end = 0;
        RunningHash record;
    };

    // The include pass and its results.
    bool getSchemaIncludeList(Outlines& outlines);
    void copyElementList();
    void mergeLists();
    void pull(const Fingerprint& type);

    // Reading a document into the table.
    void setMainType(std::string_view name);
    std::string_view getRootTag(const SchemaOutline& outline);
    void processElement(const SchemaOutline& outline);
    void processComplexType(const SchemaOutline& outline, Index container, std::string_view parentName);
    void enterType(const SchemaOutline& outline, TypeWalk& walk);
    bool nextList(const SchemaOutline& outline, TypeWalk& walk);
    void processTag(const SchemaOutline& outline, TypeWalk& walk);
    void prefetchBehind(const SchemaOutline& outline, Index at);
    SchemaElement* addSchemaElement(const SchemaEntryContent& content, const Record& parent);
    SchemaEntryContent contentOf(const SchemaOutline& outline, Index at, std::string_view name) const;
    bool areSameType(std::string_view oneType, std::string_view otherType) const;
    bool matchesEarlier(const SchemaEntryContent& content, const SchemaElement& earlier) const;

    SourceReport& report;
    SchemaKinds& kinds;
    const CycleHandler onCycle;
    Entries schemaElements;            // of the current pass
    Entries includedElements;          // of the include pass
    std::deque<SchemaElement*> pulled; // included entries that belong to the element table as well, at its end
    Arena memory;                      // of the entries of both tables
    CancelPoint cancelPoint{4096};     // passed at each declaration
    Ahead ahead;
    int cyclicReferences = 0; // reported so far
    Index mainElement = SchemaOutline::kNone;
    bool isComplete = false; // the second pass would find the same
    CString rootTypeName;    // stays from one schema to the next
    CString mainType;
    CString earlierMainType;   // of the previous schema
    std::string_view mainName; // `mainType`, as a text that lives as long as the import
};
