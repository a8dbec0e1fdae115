#include "Import/Full/SourceNames.h"

#include "Base/Progress.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

// Records are named before all enumerations and tables, so a record keeps its name. Records of the main types' own
// documents are named first, so that an imported library doesn't change their names.
namespace {

constexpr std::size_t kFewFields = 16; // names; if there are more, they are hashed
constexpr std::string_view kTablePrefix = "t_";

} // namespace

// The field names of one record. Few names are searched linearly, so most records need no hash.
class SourceNames::FieldNames
{
public:
    /// Adds a name. If it is taken, returns the last number that was appended to it, else null.
    unsigned* add(std::string_view name)
    {
        if (few.size() == kFewFields)
            return many.add(name);
        for (auto& [known, last] : few)
            if (known == name)
                return &last;
        few.emplace_back(name, 1);
        if (few.size() == kFewFields)
            for (const auto& [known, last] : few)
                many.add(known, last);
        return nullptr;
    }

    void clear()
    {
        few.clear();
        many.clear();
    }

private:
    std::vector<std::pair<std::string_view, unsigned>> few;
    TakenNames many;
};

void SourceNames::name(const std::vector<Index>& order, std::span<const Index> first,
                       std::span<const std::uint32_t> ownFiles)
{
    isNamed.assign(types.enumerations.size(), false);
    spaces.resize(types.spaces.size());
    // Names are given in order of declaration, so the first of equal names keeps it. Records declared in the files of
    // the main types come first, and of these the ones with a name of their own.
    std::vector<bool> isWanted(types.records.size());
    for (const Index record : order)
        isWanted[record] = true;
    for (const Index record : first)
        if (isWanted[record]) {
            isWanted[record] = false;
            nameRecord(record);
        }
    std::vector<bool> isOwn(report.fileCount() + 1);
    for (const std::uint32_t file : ownFiles)
        isOwn[file] = true;
    for (const bool isOwnTurn : {true, false})
        for (const bool isNamedTurn : {true, false})
            for (Index index = 0; index < types.records.size(); ++index)
                if (const SourceTypes::Record& record = types.records[index];
                    isWanted[index] && isOwn[record.place.file] == isOwnTurn && record.isNamed == isNamedTurn)
                    nameRecord(index);
    if (types.common != SourceTypes::kNone)
        findSharedTables();
    CancelPoint cancelPoint(1024);
    FieldNames fieldNames;
    for (const Index record : order) {
        cancelPoint.pass();
        fieldNames.clear();
        nameFields(record, fieldNames);
    }
}

// Includes records that are not imported, like the merge of equal types, so that the folder of a table does not depend
// on the main types.
void SourceNames::findSharedTables()
{
    std::unordered_map<TableKey, Index, TableHash> firstSpaces;
    for (Index record = 0; record < types.records.size(); ++record)
        for (const Field& field : std::as_const(types).fieldsOf(record)) {
            const TableKey key{field.name, field.type, 0};
            const Index space = types.records[record].space;
            if (field.repeats > 0 && firstSpaces.try_emplace(key, space).first->second != space)
                sharedTables.insert(key);
        }
}

void SourceNames::nameRecord(Index index)
{
    SourceTypes::Record& record = types.records[index];
    const std::string_view wanted = record.name;
    record.name = unique({}, wanted, record.home, record.space);
    noteChange(record.place, wanted, record.name);
}

// Names the fields of a record: elements first, then attributes, then the text, so the later ones change.
void SourceNames::nameFields(Index index, FieldNames& names)
{
    const SourceTypes::Record record = types.records[index];
    for (const SourceTypes::Role role : {SourceTypes::roleElement, SourceTypes::roleAttribute, SourceTypes::roleValue})
        for (Field& field : types.fieldsOf(index)) {
            if (field.role != role)
                continue;
            const std::string_view wanted = field.name;
            if (names.add(wanted)) {
                if (role == SourceTypes::roleAttribute)
                    field.name = types.join(record.name, wanted);
                // Continues from the last number that this name got.
                while (names.add(field.name))
                    field.name = types.join(wanted, std::to_string(++*names.add(wanted)));
                noteChange(record.place, wanted, field.name);
            }
            nameType(field, index);
        }
}

// Names the type of a field, and wraps it in a table for each level of repetition: "t_x", then "t_t_x". Fields of one
// name and type share their tables.
void SourceNames::nameType(Field& field, Index record)
{
    if (field.type.kind == SourceTypes::kindEnumeration)
        nameEnumeration(field.type.index, types.records[record].place, record);
    const bool isShared = field.repeats > 0 && sharedTables.contains({field.name, field.type, 0});
    const Index space = isShared ? types.common : types.records[record].space;
    CString prefix;
    for (std::uint16_t depth = 0; depth < field.repeats; ++depth) {
        prefix += kTablePrefix;
        const TableKey key{field.name, field.type, space};
        const std::uint32_t hash = keyHash(key);
        const KnownTable* known = tables.find(key, hash);
        if (!known) {
            const auto index = static_cast<Index>(types.tables.size());
            KnownTable* const made =
                std::pmr::polymorphic_allocator<>(&memory).new_object<KnownTable>(KnownTable{key, index});
            tables.store(made, hash);
            known = made;
            types.tables.push_back({unique(prefix, field.name, record, space), field.type, space});
        }
        field.type = {SourceTypes::kindTable, known->index};
    }
}

void SourceNames::nameUnused()
{
    for (Index enumeration = 0; enumeration < types.enumerations.size(); ++enumeration)
        if (types.enumerations[enumeration].isNamed)
            nameEnumeration(enumeration, types.enumerations[enumeration].place, SourceTypes::kNone);
}

// An enumeration that several records use gets its name at the first of them.
void SourceNames::nameEnumeration(Index index, SourcePlace place, Index home)
{
    if (isNamed[index])
        return;
    isNamed[index] = true;
    SourceTypes::Enumeration& enumeration = types.enumerations[index];
    const std::string_view wanted = enumeration.name;
    enumeration.name = unique({}, wanted, home, enumeration.space);
    noteChange(place, wanted, enumeration.name);
}

// Returns `prefix` and `name` as one name. If that is taken, the name of the record `home` is inserted; then a number
// is appended.
std::string_view SourceNames::unique(std::string_view prefix, std::string_view name, Index home, Index space)
{
    TakenNames& taken = spaces[space];
    std::string_view made = prefix.empty() ? name : types.keep(CString(prefix) + CString(name));
    if (!taken.add(made))
        return made;
    if (home != SourceTypes::kNone)
        made = types.keep(CString(prefix) + CString(types.records[home].name) + "_" + CString(name));
    const std::string_view base = made;
    while (taken.add(made))
        made = types.join(base, std::to_string(++*taken.add(base)));
    return made;
}

void SourceNames::noteChange(SourcePlace place, std::string_view from, std::string_view to)
{
    if (to != from)
        report.add(SourceReport::nameChanged, place, CString(from) + " is " + CString(to));
}
