#pragma once

#include "Base/KeyedTable.h"
#include "Import/Full/SourceTypes.h"

#include <deque>
#include <unordered_set>

/// Gives the types of a source their final names, unique in each namespace: records first, then enumerations and tables
/// in the order of the records' fields. A taken name gets the name of its record and "_" as prefix, then a number. In a
/// record elements keep their names, an attribute named like an element gets the record's name as prefix, and the text
/// field "value" is named last. Changes are reported. Names are compared exactly, by bytes.
class SourceNames
{
public:
    /// Both must outlive this object. Changes names in `types`, and adds tables.
    SourceNames(SourceTypes& types, SourceReport& report) : types(types), report(report) {}

    /// Names the records in `order`, their fields, and the types of these. The records `first` are named first, then
    /// those declared in the files `ownFiles`, then the others; among each of these, the named ones first. A repeated
    /// field gets the type of its table. Call it once.
    void name(const std::vector<SourceTypes::Index>& order, std::span<const SourceTypes::Index> first,
              std::span<const std::uint32_t> ownFiles);

    /// Names the declared enumerations that no field uses. Call it after name(), and only if these are imported.
    void nameUnused();

private:
    using Index = SourceTypes::Index;
    using Field = SourceTypes::Field;
    class FieldNames;

    // The names taken, each with the last number that was appended to it. A source can have a million, so they lie in
    // an arena: a node for each on the heap was the slowest part of naming half a million tables.
    class TakenNames
    {
    public:
        // Adds a name, which must live as long as the table. If it is taken, returns its number, else null.
        unsigned* add(std::string_view name, unsigned last = 1)
        {
            const std::uint32_t hash = keyHash(name);
            if (Taken* const known = names.find(name, hash))
                return &known->last;
            names.store(std::pmr::polymorphic_allocator<>(&memory).new_object<Taken>(Taken{name, last}), hash);
            return nullptr;
        }

        void clear()
        {
            names.clear();
            memory.release();
        }

    private:
        struct Taken
        {
            std::string_view name;
            unsigned last; // the next equal name continues from it
        };

        Arena memory;
        KeyedTable<Taken, &Taken::name> names;
    };

    // In a namespace, fields of the same name and type share a table, so these three identify it.
    struct TableKey
    {
        std::string_view name;
        SourceTypes::Type type;
        Index space;

        friend bool operator==(const TableKey&, const TableKey&) = default;
        friend std::uint32_t keyHash(const TableKey& key)
        {
            return (::keyHash(key.name) + key.space) ^ (key.type.index << 3 | key.type.kind);
        }
    };
    struct TableHash
    {
        std::size_t operator()(const TableKey& key) const { return keyHash(key); }
    };
    // A table with its key; `index` refers to SourceTypes::tables.
    struct KnownTable
    {
        TableKey key;
        Index index;
    };

    void findSharedTables();
    void nameRecord(Index record);
    void nameFields(Index record, FieldNames& names);
    void nameType(Field& field, Index record);
    void nameEnumeration(Index enumeration, SourcePlace place, Index home);
    std::string_view unique(std::string_view prefix, std::string_view name, Index home, Index space);
    void noteChange(SourcePlace place, std::string_view from, std::string_view to);

    SourceTypes& types;
    SourceReport& report;
    std::deque<TakenNames> spaces;                             // by namespace
    Arena memory;                                              // of the entries of `tables`
    KeyedTable<KnownTable, &KnownTable::key, TableKey> tables; // by name, component and namespace
    std::unordered_set<TableKey, TableHash> sharedTables;      // in several namespaces; stored with space 0
    std::vector<bool> isNamed;                                 // by enumeration; several fields may have one
};
