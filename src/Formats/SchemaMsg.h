#pragma once

#include "Formats/MsgBase.h"
#include "Formats/SchemaElement.h"
#include "Formats/SchemaOutline.h"
#include "Utils/KeyedTable.h"

#include <deque>

/// The importer of XML Schema files. Complex types become records, the elements and attributes declared in them fields;
/// schema tags are known by the literal prefixes "xsd:" and "xs:", namespaces are not resolved.
///
/// A file is read twice. The first pass reads it together with every document that it includes, imports or redefines;
/// the second reads the file alone, and pulls from the first what it names as a type without declaring it.
class SchemaMessage : public MsgBase
{
public:
    SchemaMessage() : MsgBase(1) {}

    static MsgBase* New() { return new SchemaMessage; }

    /// `source` is the name of the schema file. 0 when it can't be loaded or has no main element.
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    int isFileMode() const override { return 1; }
    CString queryMainTypeName() const override { return mainType; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

private:
    enum Modifiers
    {
        modNone = 0,
        modStar = 1
    };

    using Index = SchemaOutline::Index;
    struct TypeWalk;

    // A complex type in hand: its name, which is its key, and its entry, null where it was refused.
    struct Record
    {
        std::string_view name;
        RunningHash key;
        SchemaElement* entry = nullptr;
    };

    struct Field;

    using Outlines = std::deque<SchemaOutline>;

    int import(const CString& source, const CString& basePath, const CString& fileName, Outlines& outlines);
    void forget();

    // The include pass and what comes of it.
    bool getSchemaIncludeList(Outlines& outlines);
    bool readIncluded(const CString& fileName, Outlines& outlines);
    void copyElementList();
    void mergeLists();
    void pull(const Fingerprint& type);
    const SchemaElement* findEntry(const Fingerprint& key) const;

    // Reading a document into the table.
    void setMainType(std::string_view name);
    std::string_view getRootTag(const SchemaOutline& outline);
    void processElement(const SchemaOutline& outline);
    void processComplexType(const SchemaOutline& outline, Index container, std::string_view parentName);
    void enterType(const SchemaOutline& outline, TypeWalk& walk);
    bool nextList(const SchemaOutline& outline, TypeWalk& walk);
    void processTag(const SchemaOutline& outline, TypeWalk& walk);
    void prefetchEntry(const SchemaDeclaration& field, const TypeWalk& walk) const;
    SchemaElement* addSchemaElement(std::string_view name, const Record& parent, std::string_view type);

    // Building the model from the table.
    int doParse(const SchemaOutline& outline, const CString& folder, bool isRead);
    std::size_t countFields() const;
    void declareRecord(const SchemaElement& entry, const CString& path, Field& field);
    void declareField(Field& field, Modifiers mark, const Fingerprint& usageKey, const CString& path, Element* record);
    static int getType(const SchemaElement* entry, CString& typeName, CString& fieldName);
    Element::ElementTypes getBrokerType(CString& typeName) const;
    static Modifiers getModifiers(const SchemaElement& entry) { return entry.isMarked() ? modStar : modNone; }
    static int removeModifiers(CString& name);

    using Table = KeyedTable<SchemaElement, &SchemaElement::queryKey, Fingerprint>;
    Table schemaElements;                    // of the pass in hand
    Table includedElements;                  // of the include pass
    std::deque<SchemaElement*> pulled;       // the end of the element table: entries that stand in both
    std::deque<SchemaElement> ownedElements; // of both tables
    int cyclicReferences = 0;                // how many it has shown
    CString rootTypeName;                    // the type that the main element names; stays from one import to the next
    CString mainType;                        // the main element's name; empty when there is none
    CString earlierMainType;                 // that of the import before
    std::string_view mainName;               // `mainType`, in a text that lives as long as the import
    CString baseFolder;
};
