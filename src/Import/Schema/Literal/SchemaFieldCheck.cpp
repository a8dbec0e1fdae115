#include "Import/Schema/Literal/SchemaFieldCheck.h"

#include "Base/Progress.h"

// The meaning of each field's declaration is determined again and compared with its element. Nearly all fields are
// single and have a built-in type that the reading supports; for these comparing two kinds is enough. Fields of one
// name share an element, so a difference is reported for each of them whose meaning doesn't match.

namespace {

// Fields ahead of the checked one whose elements are prefetched.
constexpr std::size_t kAhead = 8;

} // namespace

// If the element of a record is not a record any more, a field of its name has replaced it.
void SchemaFieldCheck::reportAll(std::string_view path)
{
    reportFields(path);
    for (const auto& [declared, record] : records)
        if (record->queryType() != Element::typeRow)
            sourceReport.add(SourceReport::declarationSkipped, declared->queryPlace(), record->queryName());
}

void SchemaFieldCheck::reportFields(std::string_view path)
{
    CancelPoint cancelPoint{4096};
    auto nextType = types.begin();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        cancelPoint.pass();
        if (i + kAhead < fields.size())
            __builtin_prefetch(fields[i + kAhead].element); // elements are scattered in memory
        if (fields[i].plainKind == Element::typeOther)
            report(fields[i], *nextType++, path);
        else if (fields[i].element->queryType() != fields[i].plainKind)
            report(fields[i], nullptr, path);
    }
}

Element::ElementTypes SchemaFieldCheck::plainKindOf(const SchemaElement& declared)
{
    const std::string_view type = declared.queryType();
    const bool isSingle = !declared.isMarked() && !declared.isInRepeated();
    if (!isSingle || declared.isReference() || declared.queryLoss() != SchemaTypeLoss::none || !type.starts_with("xs"))
        return Element::typeOther;
    const std::string_view local = type.substr(type.starts_with("xs:") ? 3 : std::min<std::size_t>(type.size(), 4));
    if (local == "string")
        return Element::typeString;
    return local == "decimal" ? Element::typeNumber : local == "date" ? Element::typeDate : Element::typeOther;
}

// Reports a field unless its element matches. A lost repetition is reported separately: the reading ignores groups that
// repeat, and the table may be in another record only.
void SchemaFieldCheck::report(const Field& field, const SchemaElement* type, std::string_view path)
{
    const SchemaElement& declared = *field.declared;
    const std::string_view name = unmarkedName(declared.queryName());
    const Meaning meaning = meaningOf(declared, name, type);
    if (meaning.loss)
        sourceReport.add(*meaning.loss, declared.queryPlace(), meaning.lost);
    else if (!matches(*field.element, name, meaning, path))
        sourceReport.add(SourceReport::mergedByName, declared.queryPlace(), name);
    const bool onlyGroupRepeats = declared.isInRepeated() && !declared.isMarked() && !declared.isDeclaredAgain();
    if (onlyGroupRepeats || (field.repeats && repetitions.staysSingle(*field.element, field.record)))
        sourceReport.add(SourceReport::repetitionSkipped, declared.queryPlace(), name);
}

// Returns the meaning of a declaration, or the loss that the table has found already.
SchemaFieldCheck::Meaning SchemaFieldCheck::meaningOf(const SchemaElement& declared, std::string_view name,
                                                      const SchemaElement* type)
{
    switch (declared.queryLoss()) {
    case SchemaTypeLoss::innerType:
        return {Element::typeString, {}, SourceReport::simpleTypeSkipped, name};
    case SchemaTypeLoss::otherType:
        return {Element::typeString, {}, SourceReport::mergedByName, name};
    case SchemaTypeLoss::none:
        break;
    }
    return declared.isReference() ? meaningOfReference(declared, name)
                                  : meaningOfType(declared.queryType(), type, name, declared.isMarked());
}

// A reference has the type of an element that was read before it, else it is text. If the element is read later, the
// reference can only share the record of its name.
SchemaFieldCheck::Meaning SchemaFieldCheck::meaningOfReference(const SchemaElement& declared, std::string_view name)
{
    const SchemaElement* const target = table.findAny(Fingerprint(name));
    if (!target)
        return {Element::typeString, {}, SourceReport::unresolvedReference, name};
    if (target->queryLoss() == SchemaTypeLoss::innerType)
        return {Element::typeString, {}, SourceReport::simpleTypeSkipped, name};
    Meaning meaning =
        meaningOfType(target->queryType(), table.findType(target->queryType()), name, declared.isMarked());
    if (declared.queryType().empty() && meaning.kind != Element::typeString && meaning.kind != Element::typeRow)
        meaning = {Element::typeString, {}, SourceReport::typeUnknown, name};
    return meaning;
}

// Returns the meaning of a field of this type, with a loss if the literal reading doesn't support it.
SchemaFieldCheck::Meaning SchemaFieldCheck::meaningOfType(std::string_view type, const SchemaElement* known,
                                                          std::string_view name, bool repeats)
{
    if (type.empty() || type == SchemaDeclaration::kAnonymousType)
        return isLeftBehind(name) ? Meaning{Element::typeRow, {}, SourceReport::declarationSkipped, name}
                                  : Meaning{Element::typeRow};
    if (SchemaTable::isBuiltIn(type))
        return meaningOfBuiltIn(type, repeats);
    // A single field of a declared type names that type. If the type has no fields, no record results, and the name
    // refers to nothing.
    if (known && !repeats)
        return known->queryChildren() ? Meaning{Element::typeOther, type}
                                      : Meaning{Element::typeOther, type, SourceReport::unresolvedReference, type};
    // A repeated field loses its type, but shares the element of the record of its name.
    if (known && type == name)
        return {Element::typeRow};
    // All others are text. That is a loss unless the type is text, too.
    const SchemaKinds::Kind kind = known ? SchemaKinds::unknown : kinds.kindOf(type);
    const bool isEmpty = known && !known->queryChildren() && known->queryType().empty(); // an element has a type
    if (kind == SchemaKinds::text || isEmpty)
        return {};
    const bool isDeclared = kind != SchemaKinds::unknown || kinds.isDeclared(type) ||
                            type == table.queryRootTypeName() ||
                            table.findAny(Fingerprint(type.substr(type.find(':') + 1)));
    return {Element::typeString, {}, isDeclared ? SourceReport::typeUnknown : SourceReport::unresolvedReference, type};
}

// Returns whether a record is only in an included document. Types are pulled from there by the names that fields give,
// so the types inside the fields of a pulled type are not pulled.
bool SchemaFieldCheck::isLeftBehind(std::string_view record) const
{
    const Fingerprint key(record);
    const SchemaElement* const included = table.find(key) ? nullptr : table.findAny(key);
    return included && included->queryChildren();
}

// The literal reading supports decimal and date. All other built-in types become text, as do all repeated fields.
SchemaFieldCheck::Meaning SchemaFieldCheck::meaningOfBuiltIn(std::string_view type, bool repeats) const
{
    const std::string_view local = type.substr(type.find(':') + 1);
    if (local == "string")
        return {};
    if (local == "decimal" && !repeats)
        return {Element::typeNumber};
    if (local == "date" && !repeats)
        return {Element::typeDate};
    switch (kinds.builtInKindOf(type)) {
    case SchemaKinds::text:
        return {};
    case SchemaKinds::unknown:
        return {Element::typeString, {}, SourceReport::unresolvedReference, type};
    default:
        return {Element::typeString, {}, SourceReport::typeUnknown, type};
    }
}

// Returns whether the element matches a declaration. All fields of a name share one element. A field that means the
// record of its own name is text if there is no such record: a type without fields is text.
bool SchemaFieldCheck::matches(const Element& element, std::string_view name, const Meaning& meaning,
                               std::string_view path) const
{
    const auto isKnownAs = [&](std::string_view record) {
        const std::string_view known = element.queryKnownType();
        return known.size() == path.size() + record.size() && known.ends_with(record) && known.starts_with(path);
    };
    switch (element.queryType()) {
    case Element::typeRow:
        return meaning.kind == Element::typeRow || (meaning.kind == Element::typeOther && meaning.record == name);
    case Element::typeOther:
        if (element.queryKnownType() == "String")
            return meaning.kind == Element::typeString || meaning.kind == Element::typeRow;
        return meaning.kind == Element::typeOther ? isKnownAs(meaning.record)
                                                  : meaning.kind == Element::typeRow && isKnownAs(name);
    case Element::typeString:
        return meaning.kind == Element::typeString || meaning.kind == Element::typeRow;
    default:
        return meaning.kind == element.queryType();
    }
}
