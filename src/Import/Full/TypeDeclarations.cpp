#include "Import/Full/TypeDeclarations.h"

#include "Base/Fingerprint.h"

namespace {

SourceTypes::Index spaceOf(const SourceTypes& types, SourceTypes::Type type)
{
    return type.kind == SourceTypes::kindEnumeration ? types.enumerations[type.index].space
           : type.kind == SourceTypes::kindRecord    ? types.records[type.index].space
           : type.kind == SourceTypes::kindTable     ? types.tables[type.index].space
                                                     : 0;
}

} // namespace

TypeDeclarations::TypeDeclarations(const SourceTypes& types, TypeModel& model, std::vector<CString> folders) :
    types(types), model(model), names(model.queryNames()),
    paths(std::move(folders)), plainNames{&names.intern("String"), &names.intern("Number"), &names.intern("Time")},
    isEnumerationDeclared(types.enumerations.size()), isTableDeclared(types.tables.size()),
    recordNames(types.records.size())
{
    for (const CString& path : paths)
        pathNames.push_back(&names.intern(path));
}

// Declares a type as a top-level element. Its usage key only needs to differ from those of other types.
Element* TypeDeclarations::declareType(Index space, std::string_view name, std::string_view description,
                                       Element::ElementTypes type)
{
    const CString& path = paths[space];
    RunningHash key(name);
    // Types of different namespaces may share a name.
    if (space != 0)
        key.append(path);
    if (description.empty())
        return model.addElement(key, path, name, type, nullptr).element;
    return model.addElement(key, path, name, description, type, nullptr).element;
}

// While a record is declared, the names of the next one are prefetched, and the fields of one behind it, so that the
// cache misses in their large tables overlap.
void TypeDeclarations::declareRecords(std::span<const Index> records)
{
    constexpr std::size_t kAhead = 4;
    const auto prefetchNames = [&](std::size_t at) {
        nextHashes.clear();
        if (at >= records.size())
            return;
        for (const SourceTypes::Field& field : types.fieldsOf(records[at])) {
            nextHashes.push_back(keyHash(field.name));
            names.prefetch(nextHashes.back());
        }
    };
    prefetchNames(0);
    for (std::size_t at = 0; at < records.size(); ++at) {
        if (at + kAhead < records.size())
            for (const SourceTypes::Field& field : types.fieldsOf(records[at + kAhead]))
                __builtin_prefetch(&field);
        hashes.swap(nextHashes);
        prefetchNames(at + 1);
        declareRecord(records[at]);
    }
}

// Declares a record, after the enumerations and tables that its fields use.
void TypeDeclarations::declareRecord(Index index)
{
    for (const SourceTypes::Field& field : types.fieldsOf(index)) {
        if (field.type.kind == SourceTypes::kindEnumeration)
            declareEnumeration(field.type.index);
        if (field.type.kind == SourceTypes::kindTable && !isTableDeclared[field.type.index])
            declareTables(field.type.index);
    }
    const SourceTypes::Record& record = types.records[index];
    Element* row = declareType(record.space, record.name, record.description, Element::typeRow);
    // Repetition has been turned into tables, so each field occurs once and needs no usage.
    const std::span<const SourceTypes::Field> fields = types.fieldsOf(index);
    model.reserveFields(row, fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        Name& name = names.intern(fields[i].name, hashes[i]);
        Name& path = *pathNames[spaceOf(types, fields[i].type)];
        Element* const element = model.addPart(row, path, name, Element::typeOther);
        if (!fields[i].description.empty())
            element->setDescription(fields[i].description);
        element->setKnownType(typeName(fields[i].type));
    }
}

// Constants are children with the path of the enumeration. Their element type is not used.
void TypeDeclarations::declareEnumeration(Index index)
{
    if (isEnumerationDeclared[index])
        return;
    isEnumerationDeclared[index] = true;
    const SourceTypes::Enumeration& enumeration = types.enumerations[index];
    Element* type = declareType(enumeration.space, enumeration.name, enumeration.description, Element::typeEnum);
    Name& path = *pathNames[enumeration.space];
    for (const auto& [name, description] : types.constantsOf(index)) {
        Element* const constant = model.addPart(type, path, names.intern(name), Element::typeString);
        if (!description.empty())
            constant->setDescription(description);
    }
}

// Declares nested tables from the inside out.
void TypeDeclarations::declareTables(Index outer)
{
    std::vector<Index> tables;
    SourceTypes::Type component{SourceTypes::kindTable, outer};
    for (; component.kind == SourceTypes::kindTable; component = types.tables[component.index].component)
        tables.push_back(component.index);
    if (component.kind == SourceTypes::kindEnumeration)
        declareEnumeration(component.index);
    for (auto index = tables.rbegin(); index != tables.rend(); ++index) {
        if (isTableDeclared[*index])
            continue;
        isTableDeclared[*index] = true;
        const SourceTypes::Table& table = types.tables[*index];
        Element* type = declareType(table.space, table.name, {}, Element::typeTable);
        Name& name = typeName(table.component);
        type->setKnownType(name);
        // The component is also a child, because the order would otherwise put the table first. A child has the path
        // of its type, which identifies the type for the order.
        Name& path = *pathNames[spaceOf(types, table.component)];
        model.addPart(type, path, names.intern(table.name), Element::typeOther)->setKnownType(name);
    }
}

Name& TypeDeclarations::typeName(SourceTypes::Type type)
{
    const Index space = spaceOf(types, type);
    if (type.kind <= SourceTypes::kindTime)
        return *plainNames[type.kind];
    if (type.kind == SourceTypes::kindEnumeration)
        return fullName(space, types.enumerations[type.index].name);
    if (type.kind == SourceTypes::kindTable)
        return fullName(space, types.tables[type.index].name);
    // Most references are to records, so each full name of a record is joined and looked up once.
    Name*& known = recordNames[type.index];
    if (!known)
        known = &fullName(space, types.records[type.index].name);
    return *known;
}

Name& TypeDeclarations::fullName(Index space, std::string_view shortName)
{
    return names.intern(joined.assign(paths[space]).append(shortName));
}
