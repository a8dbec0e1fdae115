#pragma once

#include "Import/Schema/Literal/SchemaTable.h"
#include "Model/Element.h"

#include <optional>
#include <unordered_map>

/// Compares what a schema says of its fields with what the model has of them, and reports where the two differ: types
/// that the literal reading doesn't know became text, and of fields of one name in several records the last one with a
/// type of its own decides for all.
class SchemaFieldCheck
{
public:
    SchemaFieldCheck(const SchemaTable& table, SchemaKinds& kinds, SourceReport& report) :
        table(table), kinds(kinds), sourceReport(report)
    {}

    /// Notes that `declared` became a field of `record`.
    void add(const SchemaElement& declared, const Element& field, const SchemaElement& record)
    {
        fields.push_back({&declared, &field, &record, plainKindOf(declared)});
    }

    void reserve(std::size_t count) { fields.reserve(count); }

    /// Reports the differences, when all records are declared in the folder `path` and no table is made yet.
    void reportAll(std::string_view path);

private:
    struct Field
    {
        const SchemaElement* declared;
        const Element* element;
        const SchemaElement* record;
        Element::ElementTypes plainKind;
    };

    // The kind of what nearly all fields are: single, and of a type that is known by its name. typeOther for the
    // others.
    static Element::ElementTypes plainKindOf(const SchemaElement& declared);
    void report(const Field& field, std::string_view path);

    // What a declaration should have become.
    struct Meaning
    {
        Element::ElementTypes kind = Element::typeString; // typeRow: the record of the field's own name, if it is one
        std::string_view record{};                        // for typeOther
        std::optional<SourceReport::Construct> loss{};    // why it is text instead
        std::string_view lost{};                          // of which name
    };

    Meaning meaningOf(const SchemaElement& declared, std::string_view name);
    Meaning meaningOfReference(const SchemaElement& declared, std::string_view name);
    Meaning meaningOfType(std::string_view type, std::string_view name, bool repeats);
    Meaning meaningOfBuiltIn(std::string_view type, bool repeats) const;
    bool isAsMeant(const Element& element, std::string_view name, const Meaning& meaning, std::string_view path) const;

    const SchemaTable& table;
    SchemaKinds& kinds;
    SourceReport& sourceReport;
    std::vector<Field> fields;
    std::unordered_map<const Element*, const SchemaElement*> repeated; // the first record in which it repeats
};
