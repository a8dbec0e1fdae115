#include "Import/Full/SourceTypes.h"

#include "Base/KeyedTable.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kMaxTextMegabytes = 256;

} // namespace

std::string_view SourceTypes::keep(std::string_view text)
{
    spend(text.size());
    return memory.keep(text);
}

std::string_view SourceTypes::join(std::string_view first, std::string_view second)
{
    spend(first.size() + 1 + second.size());
    return memory.keep({first, "_", second});
}

// URIs with the same given folder share a namespace.
SourceTypes::Index SourceTypes::spaceOf(std::string_view uri)
{
    if (!folders)
        return 0;
    if (const auto known = spacesByUri.find(uri); known != spacesByUri.end())
        return known->second;
    const std::string_view kept = keep(uri);
    const auto given = folders->find(CString(uri));
    Index space = 0;
    if (given != folders->end()) {
        space = spaceIn(given->second);
    } else if (!uri.empty()) {
        space = static_cast<Index>(spaces.size());
        spaces.push_back({kept, {}});
    }
    return spacesByUri.emplace(kept, space).first->second;
}

// A linear search, because only folders given by the user and `common` are looked up.
SourceTypes::Index SourceTypes::spaceIn(const CString& folder)
{
    if (folder.empty())
        return 0;
    const auto known = std::ranges::find(spaces, folder, &Space::folder);
    if (known != spaces.end())
        return static_cast<Index>(known - spaces.begin());
    spaces.push_back({{}, folder});
    return static_cast<Index>(spaces.size() - 1);
}

// No type refers to a table yet, because SourceNames makes tables later.
void SourceTypes::renumber(std::span<const Index> newRecords, std::span<const Index> newEnumerations)
{
    const auto renumberType = [&](Type& type) {
        if (type.kind == kindRecord)
            type.index = newRecords[type.index];
        else if (type.kind == kindEnumeration)
            type.index = newEnumerations[type.index];
    };
    for (Field& field : fields)
        renumberType(field.type);
    for (Candidate& candidate : candidates)
        renumberType(candidate.type);
    for (Record& record : records)
        record.home = record.home == kNone ? kNone : newRecords[record.home];
    for (std::vector<Index>& choice : choices)
        for (Index& record : choice)
            record = newRecords[record];
    for (auto& [record, choice] : choosers)
        record = newRecords[record];
}

SourceTypes::Index SourceTypes::addRecord(const Record& record)
{
    records.push_back(record);
    return static_cast<Index>(records.size() - 1);
}

// The document contains a field's name twice, once in its generated description, and the name of its type. A type's
// name is repeated for each field of the type, so a few long names could make a huge document from a small source.
void SourceTypes::setFields(Index record, std::span<const Field> added)
{
    checkFields(added.size());
    for (const auto& [name, description, type, role, repeats] : added) {
        spend(2 * name.size() + description.size());
        spend(type.kind == kindRecord        ? records[type.index].name.size()
              : type.kind == kindEnumeration ? enumerations[type.index].name.size()
                                             : 0);
    }
    records[record].firstField = static_cast<Index>(fields.size());
    records[record].fieldCount = static_cast<Index>(added.size());
    fields.insert(fields.end(), added.begin(), added.end());
}

void SourceTypes::checkFields(std::size_t count) const
{
    if (fields.size() + count > kMaxFields)
        refuse(std::to_string(kMaxFields) + " fields");
}

// Equal enumerations are one type, however many fields list the same values. Descriptions don't count: those of the
// first one stay.
SourceTypes::Index SourceTypes::addEnumeration(Enumeration made, std::span<const Constant> added)
{
    // keyHash() has a secret seed, so constants can't be chosen to collide.
    std::size_t hash = keyHash(made.name) + made.space;
    for (const Constant& constant : added)
        hash = hash * 31 + keyHash(constant.name);
    const auto [first, last] = enumerationsByHash.equal_range(hash);
    for (auto known = first; known != last; ++known)
        if (enumerations[known->second].name == made.name && enumerations[known->second].space == made.space &&
            std::ranges::equal(constantsOf(known->second), added, {}, &Constant::name, &Constant::name))
            return known->second;
    if (constants.size() + added.size() > kMaxConstants)
        refuse(std::to_string(kMaxConstants) + " constants");
    made.firstConstant = static_cast<Index>(constants.size());
    made.constantCount = static_cast<Index>(added.size());
    constants.insert(constants.end(), added.begin(), added.end());
    enumerations.push_back(made);
    const auto index = static_cast<Index>(enumerations.size() - 1);
    enumerationsByHash.emplace(hash, index);
    return index;
}

SourceTypes::Index SourceTypes::recordOf(Index candidate)
{
    // A record that repeats gets one, too, because a message is a single value, whose field is then the table.
    Candidate& element = candidates[candidate];
    if (element.type.kind != kindRecord || element.repeats > 0) {
        const Field value{"value", {}, element.type, roleValue, std::exchange(element.repeats, std::uint16_t{0})};
        element.type = {kindRecord,
                        addRecord({element.name, element.description, element.place, kNone, element.space})};
        setFields(element.type.index, std::span(&value, 1));
    }
    return element.type.index;
}

void SourceTypes::spend(std::size_t bytes)
{
    spent += bytes;
    if (spent > kMaxTextMegabytes << 20)
        refuse(std::to_string(kMaxTextMegabytes) + " MB of names");
}
