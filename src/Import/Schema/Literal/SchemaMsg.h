#pragma once

#include "Import/MsgBase.h"
#include "Import/Schema/Literal/SchemaFieldCheck.h"
#include "Import/Schema/Literal/SchemaTable.h"

class XmlDocument;

/// The importer of XML Schema files, in the literal reading. Complex types become records, their elements and
/// attributes become fields. Statements are identified by the literal prefixes "xsd:" and "xs:"; namespaces are not
/// resolved. SchemaTable holds the declarations, from which this class makes the model.
class SchemaMessage : public MsgBase
{
public:
    SchemaMessage();

    static MsgBase* New() { return new SchemaMessage; }

    /// `source` is the name of the schema file. With an empty `fileName` the documents that it refers to are not read.
    /// Shows an error and returns 0 if it can't be loaded or has no main element.
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    int isFileMode() const override { return 1; }
    CString queryMainTypeName() const override { return table.queryMainType(); }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

protected:
    void onCancelled() override;

private:
    enum Modifiers
    {
        modNone = 0,
        modStar = 1
    };

    // The type that a field names, for its element; empty for "String". Set after all fields are declared, because the
    // last field of the element decides.
    struct KnownType
    {
        Element* element;
        std::string_view typeName;
    };

    // A field before its declaration. Texts are views into the documents.
    struct Field
    {
        const SchemaElement* declared; // null if it is missing
        std::uint32_t hash = 0;        // of the name
        std::string_view name;
        std::string_view typeName;
        Modifiers mark = modNone;
    };

    // An entry with its fields, before the declaration.
    struct Record
    {
        const SchemaElement* entry = nullptr;
        std::vector<Field> fields;
    };

    int import(const CString& source, const CString& basePath, const CString& fileName,
               SchemaTable::Outlines& outlines);
    bool readFile(const CString& fileName, std::uint32_t file, XmlDocument& document, SchemaTable::Outlines& outlines);
    void readIncluded(const CString& fileName, SchemaTable::Outlines& outlines);
    void reportSkipped(const SchemaOutline& outline);
    void noteMain(const SchemaOutline& outline);
    int doParse(SchemaOutline& outline, const CString& source);
    std::size_t countFields() const;
    void declareRecords(const CString& path, SchemaFieldCheck& check);
    void readRecord(const SchemaElement& entry, Record& record);
    void declareRecord(const Record& record, const CString& path, SchemaFieldCheck& check);
    TypeModel::Declared declareField(const Field& field, const SchemaElement* type, Element* record);
    static int getType(const SchemaElement* entry, std::string_view& typeName, std::string_view& fieldName);
    void setKnownTypes();
    static Element::ElementTypes getBrokerType(std::string_view& typeName, const SchemaElement* type);
    static Modifiers getModifiers(const SchemaElement& entry) { return entry.isMarked() ? modStar : modNone; }
    static int removeModifiers(std::string_view& name);

    SchemaKinds kinds;
    SchemaTable table;
    SchemaTable::Names previousNames; // before the current import, restored if it is cancelled
    CString baseFolder;
    std::vector<KnownType> knownTypes;
};
