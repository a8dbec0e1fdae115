#pragma once

#include "Base/KeyedTable.h"
#include "Base/Progress.h"
#include "Import/Schema/Literal/SchemaElement.h"
#include "Import/Schema/Literal/SchemaOutline.h"

#include <array>
#include <deque>
#include <tuple>

/// What a schema declares, by the names under which it was read; the outlines hold the texts. It is read in two passes:
/// the first over the schema together with every document that it includes, imports or redefines, the second over the
/// schema alone, which then pulls from the first what it names as a type without declaring it.
class SchemaTable
{
public:
    /// The schema itself, and behind it the documents that it names.
    using Outlines = std::deque<SchemaOutline>;
    using Entries = KeyedTable<SchemaElement, &SchemaElement::queryKey, Fingerprint>;

    /// The first pass, for a schema that is a file, and the search for the main element. Main element and root type of
    /// the schema before stay in force until then. What can't be read is shown, by the names of the files in `report`,
    /// and left out; the report gets what is passed over.
    void readIncluded(Outlines& outlines, bool isFile, SchemaKinds& kinds, SourceReport& report);

    /// The second pass, over the same schema.
    void readMain(const SchemaOutline& main);

    /// Forgets all but the names of main element and root type.
    void clear();

    /// The names that stay from one schema to the next: the main element, the one before it, the root type.
    using Names = std::array<CString, 3>;
    Names queryNames() const { return {mainType, earlierMainType, rootTypeName}; }
    void setNames(const Names& names) { std::tie(mainType, earlierMainType, rootTypeName) = std::tuple_cat(names); }

    /// The main element's name; empty when there is none.
    const CString& queryMainType() const { return mainType; }

    /// The type that the main element names; it is filed under the main element's name.
    const CString& queryRootTypeName() const { return rootTypeName; }

    /// The entries in order: what the schema declares, then what was pulled.
    const Entries& queryDeclared() const { return schemaElements; }
    const std::deque<SchemaElement*>& queryPulled() const { return pulled; }

    /// The entry of a key, declared or pulled; null when there is none.
    const SchemaElement* find(const Fingerprint& key) const;

    /// The same, also of what no type has pulled.
    const SchemaElement* findAny(const Fingerprint& key) const;

    /// The main element, in the schema's outline; kNone when there is none.
    SchemaOutline::Index queryMainElement() const { return mainElement; }

private:
    using Index = SchemaOutline::Index;
    struct TypeWalk;

    // A complex type in hand: its name, which is its key, and its entry, null where it was refused.
    struct Record
    {
        std::string_view name;
        RunningHash key;
        SchemaElement* entry = nullptr;
    };

    // The include pass and what comes of it.
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
    void enterList(const SchemaOutline& outline, TypeWalk& walk, Index first) const;
    void prefetchNext(const SchemaOutline& outline, TypeWalk& walk) const;
    SchemaElement* addSchemaElement(const SchemaSaying& said, const Record& parent);
    SchemaSaying sayingOf(const SchemaOutline& outline, Index at, std::string_view name) const;
    bool meanTheSame(std::string_view oneType, std::string_view otherType) const;

    SourceReport* report = nullptr;          // of the import in hand
    SchemaKinds* kinds = nullptr;            // the same
    Entries schemaElements;                  // of the pass in hand
    Entries includedElements;                // of the include pass
    std::deque<SchemaElement*> pulled;       // the end of the element table: entries that stand in both
    std::deque<SchemaElement> ownedElements; // of both tables
    CancelPoint cancelPoint{4096};           // passed by each declaration
    int cyclicReferences = 0;                // how many it has shown
    Index mainElement = SchemaOutline::kNone;
    bool isWhole = false; // the second pass would find what the first has found
    CString rootTypeName; // stays from one schema to the next
    CString mainType;
    CString earlierMainType;   // that of the schema before
    std::string_view mainName; // `mainType`, in a text that lives as long as the import
};
