#include "Import/Full/EqualTypes.h"

#include "Base/Fingerprint.h"
#include "Base/NumberTable.h"
#include "Base/Progress.h"

#include <map>
#include <numeric>
#include <set>
#include <utility>

// Enumerations are compared first, because they contain no types. Records are then split into classes until the fields
// of all records of a class are equal. Texts and numbers are compared by 64-bit hashes with a secret seed, so that a
// source can't make different types seem equal.
namespace {

using Index = SourceTypes::Index;
using Field = SourceTypes::Field;

// Hashes texts and numbers in order. The length of each text is hashed too, so different lists give different bytes.
class Signature
{
public:
    void add(std::string_view text)
    {
        add(text.size());
        hash.append(text);
    }
    void add(std::uint64_t number) { hash.append({reinterpret_cast<const char*>(&number), sizeof number}); }

    std::uint64_t query() const { return Fingerprint(hash).first; }

private:
    RunningHash hash;
};

// Returns for each enumeration the first one equal to it.
std::vector<Index> firstEnumerations(const SourceTypes& types)
{
    NumberTable firsts; // by signature
    std::vector<Index> all;
    for (Index at = 0; at < types.enumerations.size(); ++at) {
        Signature signature;
        signature.add(types.enumerations[at].name);
        signature.add(types.enumerations[at].description);
        signature.add(std::uint64_t{types.enumerations[at].isNamed});
        for (const auto& [name, description] : types.constantsOf(at)) {
            signature.add(name);
            signature.add(description);
        }
        all.push_back(firsts.insert(signature.query(), at).first);
    }
    return all;
}

// Returns the signature of a record without the records in its fields, which are distinguished by their classes. An
// enumeration counts as the first one equal to it.
std::uint64_t signatureOf(const SourceTypes& types, Index record, const std::vector<Index>& enumerations)
{
    Signature signature;
    signature.add(types.records[record].name);
    signature.add(types.records[record].description);
    for (const Field& field : types.fieldsOf(record)) {
        signature.add(field.name);
        signature.add(field.description);
        const bool isEnumeration = field.type.kind == SourceTypes::kindEnumeration;
        signature.add(std::uint64_t{field.repeats} << 16 | std::uint64_t{field.role} << 8 | field.type.kind);
        signature.add(isEnumeration ? enumerations[field.type.index] : 0);
    }
    return signature.query();
}

// The classes of equal records: the coarsest partition in which the records of a class have the same signature, and
// their fields at each place lead to the same class. All records begin in one class. When a class splits, its smaller
// part becomes the new one, so a record moves O(log n) times (J. Hopcroft, An n log n algorithm for minimizing states
// in a finite automaton, 1971).
class RecordClasses
{
public:
    RecordClasses(const SourceTypes& types, const std::vector<Index>& enumerations) :
        classes(types.records.size()), sums(classes.size()), uses(classes.size()), changed(classes.size())
    {
        std::iota(changed.begin(), changed.end(), 0);
        members.emplace_back(changed.begin(), changed.end());
        for (const Index record : changed) {
            sums[record] = signatureOf(types, record, enumerations);
            std::uint64_t place = 0;
            for (const Field& field : types.fieldsOf(record)) {
                if (field.type.kind == SourceTypes::kindRecord)
                    uses[field.type.index].push_back({record, place << 32});
                ++place;
            }
        }
        while (!changed.empty())
            splitChanged();
    }

    // Returns for each record the first one of its class.
    std::vector<Index> firsts() const
    {
        std::vector<Index> all;
        for (const Index at : classes)
            all.push_back(*members[at].begin());
        return all;
    }

private:
    struct Use
    {
        Index user;
        std::uint64_t place; // of the field in the user, in the upper half
    };

    // Splits each class by the sums of its records, unless all records of the class have changed in the same way.
    void splitChanged()
    {
        std::map<std::pair<Index, std::uint64_t>, std::set<Index>> parts; // by class and sum
        for (const Index record : std::exchange(changed, {}))
            parts[{classes[record], sums[record]}].insert(record);
        for (auto& [key, part] : parts)
            if (const Index from = classes[*part.begin()]; part.size() != members[from].size())
                split(from, std::move(part));
    }

    void split(Index from, std::set<Index> part)
    {
        for (const Index record : part)
            members[from].erase(record);
        if (part.size() > members[from].size())
            part.swap(members[from]);
        const auto to = static_cast<Index>(members.size());
        for (const Index record : part) {
            classes[record] = to;
            for (const auto& [user, place] : uses[record]) {
                cancelPoint.pass();
                // A sum is updated without visiting the user's other fields. It includes the place, so that two fields
                // with swapped types give another sum.
                sums[user] += RunningHash::of(place | to) - RunningHash::of(place | from);
                changed.push_back(user);
            }
        }
        members.push_back(std::move(part));
    }

    std::vector<Index> classes;           // by record
    std::vector<std::uint64_t> sums;      // of a record's signature and a hash for the class at each place
    std::vector<std::vector<Use>> uses;   // of a record
    std::vector<Index> changed;           // records whose sum may differ from that of others in their class
    std::vector<std::set<Index>> members; // by class
    CancelPoint cancelPoint{4096};
};

// Moves elements that have equals in another namespace to the namespace `common`, and keeps only the first of them. All
// others stay. Returns the new index of each element.
template <class Row>
std::vector<Index> keepFirst(std::vector<Row>& rows, const std::vector<Index>& firsts, Index common)
{
    std::vector<bool> isShared(rows.size());
    for (std::size_t at = 0; at < rows.size(); ++at)
        if (rows[at].space != rows[firsts[at]].space)
            isShared[firsts[at]] = true;
    std::vector<Index> renumbered(rows.size());
    Index kept = 0;
    for (std::size_t at = 0; at < rows.size(); ++at) {
        if (isShared[firsts[at]] && firsts[at] != at) {
            renumbered[at] = renumbered[firsts[at]];
            continue;
        }
        renumbered[at] = kept;
        rows[kept] = rows[at];
        if (isShared[at])
            rows[kept].space = common;
        ++kept;
    }
    rows.resize(kept);
    return renumbered;
}

} // namespace

EqualTypes::EqualTypes(const SourceTypes& types) :
    enumerations(firstEnumerations(types)), records(RecordClasses(types, enumerations).firsts())
{}

// Both lists are computed before anything moves, because records are compared by the enumerations that they use.
void mergeEqualTypes(SourceTypes& types, std::vector<Index>& records)
{
    const EqualTypes equal(types);
    types.common = types.spaceIn("common");
    const std::vector<Index> newRecords = keepFirst(types.records, equal.records, types.common);
    const std::vector<Index> newEnumerations = keepFirst(types.enumerations, equal.enumerations, types.common);
    types.renumber(newRecords, newEnumerations);
    for (Index& record : records)
        record = newRecords[record];
}
