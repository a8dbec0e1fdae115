#pragma once

#include "Base/LargePages.h"
#include "Import/Schema/Literal/SchemaTable.h"
#include "Model/RepeatedFields.h"

#include <optional>
#include <utility>
#include <vector>

/// Compares the declared records and fields of a schema with those of the model, and reports the differences. Types
/// that the literal reading doesn't support became text. If fields of one name in several records have different types,
/// the last one with its own type decides for all. A field of a complex type replaces a record of the same name. The
/// result for a field is only known at the end, so all fields are kept until then, as small rows.
class SchemaFieldCheck
{
public:
    SchemaFieldCheck(const SchemaTable& table, SchemaKinds& kinds, const TypeModel& model, SourceReport& report) :
        table(table), kinds(kinds), sourceReport(report), repetitions(model)
    {}

    /// Records that `declared` became the record `record`.
    void addRecord(const SchemaElement& declared, const Element& record) { records.push_back({&declared, &record}); }

    /// Records that `declared` became the field `field` of `record`, which `repeats` in it. `type` is the table's entry
    /// of its type.
    void add(const SchemaElement& declared, const Element& field, const Element& record, const SchemaElement* type,
             bool repeats)
    {
        fields.push_back(
            {&declared, &field, record.queryNumber(), repeats ? Element::typeOther : plainKindOf(declared), repeats});
        if (fields.back().plainKind == Element::typeOther)
            types.push_back(type);
    }

    /// Makes room for `count` fields.
    void reserve(std::size_t count) { fields.reserve(count); }

    /// Reports the differences. Call it after all records are declared in the folder `path`, and before tables are
    /// made.
    void reportAll(std::string_view path);

private:
    struct Field
    {
        const SchemaElement* declared;
        const Element* element;
        std::uint32_t record; // its number in the model
        Element::ElementTypes plainKind : 8;
        bool repeats;
    };

    // Returns the kind of nearly all fields: single, with a built-in type that is identified by name. typeOther for all
    // others.
    static Element::ElementTypes plainKindOf(const SchemaElement& declared);
    void reportFields(std::string_view path);
    void report(const Field& field, const SchemaElement* type, std::string_view path);

    // The correct result of a declaration.
    struct Meaning
    {
        Element::ElementTypes kind = Element::typeString; // typeRow: the record of the field's own name, if any
        std::string_view record{};                        // name of the record for typeOther
        std::optional<SourceReport::Construct> loss{};    // why it became text
        std::string_view lost{};                          // the name to report
    };

    Meaning meaningOf(const SchemaElement& declared, std::string_view name, const SchemaElement* type);
    Meaning meaningOfReference(const SchemaElement& declared, std::string_view name);
    Meaning meaningOfType(std::string_view type, const SchemaElement* known, std::string_view name, bool repeats);
    Meaning meaningOfBuiltIn(std::string_view type, bool repeats) const;
    bool isLeftBehind(std::string_view record) const;
    bool matches(const Element& element, std::string_view name, const Meaning& meaning, std::string_view path) const;

    const SchemaTable& table;
    SchemaKinds& kinds;
    SourceReport& sourceReport;
    std::vector<std::pair<const SchemaElement*, const Element*>> records;
    std::vector<Field, LargePages<Field>> fields;
    std::vector<const SchemaElement*> types; // of the fields whose plain kind is typeOther
    RepeatedFields repetitions;
};
