#pragma once

#include "Base/LargePages.h"
#include "Import/Schema/Literal/SchemaTable.h"
#include "Model/Element.h"

#include <optional>
#include <unordered_map>

/// Compares the declared fields of a schema with those of the model, and reports the differences. Types that the
/// literal reading doesn't support became text. If fields of one name in several records have different types, the last
/// one with its own type decides for all.
class SchemaFieldCheck
{
public:
    SchemaFieldCheck(const SchemaTable& table, SchemaKinds& kinds, SourceReport& report) :
        table(table), kinds(kinds), sourceReport(report)
    {}

    /// Records that `declared` became the field `field` of `record`. `type` is the table's entry of its type.
    void add(const SchemaElement& declared, const Element& field, const SchemaElement& record,
             const SchemaElement* type)
    {
        fields.push_back({&declared, &field, &record, plainKindOf(declared)});
        if (fields.back().plainKind == Element::typeOther)
            types.push_back(type);
    }

    /// Prepares for `count` fields.
    void reserve(std::size_t count) { fields.reserve(count); }

    /// Reports the differences. Call it after all records are declared in the folder `path`, and before tables are
    /// made.
    void reportAll(std::string_view path);

private:
    struct Field
    {
        const SchemaElement* declared;
        const Element* element;
        const SchemaElement* record;
        Element::ElementTypes plainKind;
    };

    // Returns the kind of nearly all fields: single, with a built-in type that is identified by name. typeOther for all
    // others.
    static Element::ElementTypes plainKindOf(const SchemaElement& declared);
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
    bool isAsMeant(const Element& element, std::string_view name, const Meaning& meaning, std::string_view path) const;

    const SchemaTable& table;
    SchemaKinds& kinds;
    SourceReport& sourceReport;
    std::vector<Field, LargePages<Field>> fields;
    std::vector<const SchemaElement*> types;                           // of the fields whose plain kind is typeOther
    std::unordered_map<const Element*, const SchemaElement*> repeated; // the first record in which an element repeats
};
