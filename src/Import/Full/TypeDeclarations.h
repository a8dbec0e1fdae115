#pragma once

#include "Import/Full/SourceTypes.h"
#include "Model/TypeModel.h"

#include <array>

/// Declares the types of one import in the model, under their final names.
class TypeDeclarations
{
public:
    using Index = SourceTypes::Index;

    /// `folders` are those of the namespaces, with a final backslash. SourceNames must have named the types. Types and
    /// model must outlive this object.
    TypeDeclarations(const SourceTypes& types, TypeModel& model, std::vector<CString> folders);

    /// Declares an enumeration with its constants, once.
    void declareEnumeration(Index enumeration);

    /// Declares records, each after the enumerations and tables that its fields use. Throws Cancelled.
    void declareRecords(std::span<const Index> records);

private:
    void declareRecord(Index record);
    void declareTables(Index outer);
    Element* declareType(Index space, std::string_view name, std::string_view description, Element::ElementTypes type);
    Name& typeName(SourceTypes::Type type);
    Name& fullName(Index space, std::string_view shortName);

    const SourceTypes& types;
    TypeModel& model;
    NamePool& names;
    const std::vector<CString> paths;      // folder by namespace
    std::vector<Name*> pathNames;          // the same as names
    const std::array<Name*, 3> plainNames; // by kind: of text, number and time
    std::vector<bool> isEnumerationDeclared;
    std::vector<bool> isTableDeclared;
    std::vector<Name*> recordNames;                // full names that fields have used
    std::vector<std::uint32_t> hashes, nextHashes; // of the names of the fields of the current and the next record
    CString joined;                                // a buffer
};
