#pragma once

#include "Base/KeyedTable.h"
#include "Import/Full/SourceTypes.h"

#include <unordered_map>
#include <unordered_set>

/// Gives the types of a source their final names, each once in its namespace: records first, then enumerations and
/// tables as they are met walking the records. A name that is taken gets the name of its record and "_" in front, then
/// a number. Within a record elements keep their names, an attribute called like one gets the record's name in front,
/// and "value" yields. What a name had to give way to is noted in the report.
class SourceNames
{
public:
    SourceNames(SourceTypes& types, SourceReport& report) : types(types), report(report) {}

    /// Names the records `order`, their fields, and what those use. The records `first` are named before the others,
    /// and those that the files `ownFiles` declare before those of other files.
    void name(const std::vector<SourceTypes::Index>& order, std::span<const SourceTypes::Index> first,
              std::span<const std::uint32_t> ownFiles);

    /// Names the declared enumerations that no field has, behind all others.
    void nameUnused();

private:
    using Index = SourceTypes::Index;
    using Field = SourceTypes::Field;
    class FieldNames;

    // Fields of one name and one type share a table in their namespace.
    struct TableKey
    {
        std::string_view name;
        SourceTypes::Type type;
        Index space;

        friend bool operator==(const TableKey&, const TableKey&) = default;
    };
    struct TableHash
    {
        std::size_t operator()(const TableKey& key) const
        {
            return (keyHash(key.name) + key.space) ^ (static_cast<std::size_t>(key.type.index) << 3 | key.type.kind);
        }
    };

    // The names of one namespace.
    struct Space
    {
        std::unordered_set<std::string_view, KeyHash> taken;
        std::unordered_map<std::string_view, unsigned, KeyHash> lastNumbers;
    };

    void findSharedTables(const std::vector<Index>& order);
    void nameRecord(Index record);
    void nameFields(Index record);
    void nameType(Field& field, Index record);
    void nameEnumeration(Index enumeration, SourcePlace place, Index home);
    void nameTable(Field& field, std::string_view prefix, Index record, Index space);
    std::string_view unique(std::string_view prefix, std::string_view name, Index home, Index space);
    void noteChange(SourcePlace place, std::string_view from, std::string_view to);

    SourceTypes& types;
    SourceReport& report;
    std::vector<Space> spaces;
    std::unordered_map<TableKey, Index, TableHash> tables;
    std::unordered_set<TableKey, TableHash> sharedTables; // of several namespaces, under 0 for each
    std::vector<bool> isNamed;                            // by enumeration
};
