#include "Import/Full/EqualTypes.h"

#include "Base/Fingerprint.h"
#include "Base/Progress.h"

#include <algorithm>
#include <numeric>

namespace {

using Index = SourceTypes::Index;
using Field = SourceTypes::Field;

struct FingerprintHash
{
    std::size_t operator()(const Fingerprint& text) const { return static_cast<std::size_t>(text.first); }
};

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

    Fingerprint query() const { return hash; }

private:
    RunningHash hash;
};

// Numbers signatures in order of first occurrence; equal ones have the same number.
class Numbering
{
public:
    Index of(const Signature& signature)
    {
        return numbers.try_emplace(signature.query(), static_cast<Index>(numbers.size())).first->second;
    }
    std::size_t size() const { return numbers.size(); }

private:
    std::unordered_map<Fingerprint, Index, FingerprintHash> numbers;
};

std::vector<Index> numberEnumerations(const SourceTypes& types)
{
    Numbering numbering;
    std::vector<Index> classes;
    for (Index at = 0; at < types.enumerations.size(); ++at) {
        Signature signature;
        signature.add(types.enumerations[at].name);
        signature.add(types.enumerations[at].description);
        signature.add(std::uint64_t{types.enumerations[at].isNamed});
        const std::span<const std::string_view> constants = types.constantsOf(at);
        for (std::size_t i = 0; i < constants.size(); ++i) {
            signature.add(constants[i]);
            signature.add(types.describeConstant(at, i));
        }
        classes.push_back(numbering.of(signature));
    }
    return classes;
}

// Returns the signature of a record without the records that its fields hold.
Signature signatureOf(const SourceTypes& types, Index record, const std::vector<Index>& enumerations)
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
    return signature;
}

// The coarsest partition of the records in which the records of a block have the same signature, and their fields at
// each place lead to the same block. This is the minimisation of a finite automaton whose letters are the places of
// fields (J. Hopcroft, An n log n algorithm for minimizing states in a finite automaton, 1971).
class Partition
{
public:
    Partition(const SourceTypes& types, const std::vector<Index>& enumerations);

    Index blockOf(Index record) const { return block[record]; }

private:
    struct Block
    {
        Index first; // index in `members`
        Index end;
        Index marked = 0; // number of marked records, which are moved to the front
    };

    // A field that leads to a record.
    struct Link
    {
        Index place; // index of the field in its record
        Index from;
    };

    void collectLinks(const SourceTypes& types);
    void refineBy(Index splitter);
    void mark(Index record);
    void split(Index at);

    std::vector<Index> block;   // by record
    std::vector<Index> members; // records by block
    std::vector<Index> position;
    std::vector<Block> blocks;
    std::vector<Index> waiting;              // blocks that may split others
    std::vector<Link> links;                 // by target record
    std::vector<Index> firstLink;            // by target record: its first link; one entry more than records
    std::vector<std::vector<Index>> sources; // by place: records whose field there leads to the splitter
    std::vector<Index> places;               // places with such records
    std::vector<Index> touched;              // blocks with marked records
    CancelPoint cancelPoint{4096};
};

Partition::Partition(const SourceTypes& types, const std::vector<Index>& enumerations) :
    members(types.records.size()), position(types.records.size())
{
    Numbering numbering;
    for (Index record = 0; record < types.records.size(); ++record)
        block.push_back(numbering.of(signatureOf(types, record, enumerations)));
    std::iota(members.begin(), members.end(), 0);
    std::ranges::stable_sort(members, {}, [this](Index record) { return block[record]; });
    blocks.resize(numbering.size(), Block{0, 0});
    for (Index i = 0; i < members.size(); ++i) {
        position[members[i]] = i;
        Block& own = blocks[block[members[i]]];
        own.first = own.end == 0 ? i : own.first;
        own.end = i + 1;
    }
    collectLinks(types);
    waiting.resize(blocks.size());
    std::iota(waiting.begin(), waiting.end(), 0);
    while (!waiting.empty()) {
        const Index splitter = waiting.back();
        waiting.pop_back();
        refineBy(splitter);
    }
}

void Partition::collectLinks(const SourceTypes& types)
{
    const auto forEach = [&types](const auto& visit) {
        for (Index record = 0; record < types.records.size(); ++record) {
            Index place = 0;
            for (const Field& field : types.fieldsOf(record)) {
                if (field.type.kind == SourceTypes::kindRecord)
                    visit(Link{place, record}, field.type.index);
                ++place;
            }
        }
    };
    firstLink.resize(types.records.size() + 1);
    Index most = 0;
    forEach([&](const Link& link, Index target) {
        ++firstLink[target + 1];
        most = std::max(most, link.place + 1);
    });
    std::partial_sum(firstLink.begin(), firstLink.end(), firstLink.begin());
    links.resize(firstLink.back());
    std::vector<Index> next(firstLink.begin(), firstLink.end() - 1);
    forEach([&](const Link& link, Index target) { links[next[target]++] = link; });
    sources.resize(most);
}

// Splits all blocks of which only some records lead to the splitter. The links are collected first, because the
// splitter may be split too.
void Partition::refineBy(Index splitter)
{
    for (Index i = blocks[splitter].first; i < blocks[splitter].end; ++i)
        for (Index at = firstLink[members[i]]; at < firstLink[members[i] + 1]; ++at) {
            cancelPoint.pass();
            std::vector<Index>& found = sources[links[at].place];
            if (found.empty())
                places.push_back(links[at].place);
            found.push_back(links[at].from);
        }
    for (const Index place : places) {
        for (const Index record : sources[place])
            mark(record);
        sources[place].clear();
        for (const Index at : touched)
            split(at);
        touched.clear();
    }
    places.clear();
}

void Partition::mark(Index record)
{
    Block& own = blocks[block[record]];
    if (own.marked == 0)
        touched.push_back(block[record]);
    const Index to = own.first + own.marked++;
    const Index other = members[to];
    std::swap(members[to], members[position[record]]);
    position[other] = position[record];
    position[record] = to;
}

// Splits a block into its marked and its other records. The smaller part becomes the new block. The larger one keeps
// the number, so it is still waiting if the whole block was.
void Partition::split(Index at)
{
    const Index marked = blocks[at].marked, first = blocks[at].first, end = blocks[at].end;
    blocks[at].marked = 0;
    if (first + marked == end)
        return;
    const bool isFront = marked <= end - first - marked;
    const Block made{isFront ? first : first + marked, isFront ? first + marked : end};
    (isFront ? blocks[at].first : blocks[at].end) = first + marked;
    const auto number = static_cast<Index>(blocks.size());
    for (Index i = made.first; i < made.end; ++i)
        block[members[i]] = number;
    blocks.push_back(made);
    waiting.push_back(number);
}

// Returns for each element the first one of its class.
template <class ClassOf>
std::vector<Index> firstOfEach(std::size_t count, const ClassOf& classOf)
{
    std::unordered_map<Index, Index> first;
    std::vector<Index> firsts;
    for (Index at = 0; at < count; ++at)
        firsts.push_back(first.try_emplace(classOf(at), at).first->second);
    return firsts;
}

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

EqualTypes::EqualTypes(const SourceTypes& types)
{
    const std::vector<Index> classes = numberEnumerations(types);
    const Partition partition(types, classes);
    records = firstOfEach(types.records.size(), [&](Index record) { return partition.blockOf(record); });
    enumerations = firstOfEach(classes.size(), [&](Index enumeration) { return classes[enumeration]; });
}

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
