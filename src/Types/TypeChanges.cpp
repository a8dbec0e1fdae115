#include "Types/TypeChanges.h"

#include "Types/TypeStructure.h"

#include <algorithm>
#include <deque>
#include <string_view>
#include <unordered_map>

namespace {

using Numbers = std::unordered_map<std::string_view, std::size_t, KeyHash>;

struct ChangeRow
{
    const char* id;
    bool breaksReaders;
    bool breaksWriters;
};

constexpr ChangeRow kChanges[] = {
    {"type-added", false, false},       {"type-removed", true, true},
    {"kind-changed", true, true},       {"field-added", false, false},
    {"field-removed", true, true},      {"constant-added", true, false}, // for those who switch on it
    {"constant-removed", false, true},  {"type-changed", true, true},
    {"repetition-changed", true, true}, {"folder-changed", true, true},
};
static_assert(std::size(kChanges) == TypeChange::idCount);

constexpr const char* kUnnamed = "(no name)";
constexpr const char* kPartNames[] = {"field", "constant", "component"};

CString inWords(const CString& repeats)
{
    return repeats.empty() ? "once" : repeats == "*" ? "repeated" : repeats;
}

// The types of one side by the names under which they are compared.
class Side
{
public:
    /// Types in `from` are compared as if they were in `to`.
    Side(const TypeStructure& structure, const CString& from, const CString& to) :
        structure(structure), from(from), to(to)
    {
        names.reserve(structure.size());
        for (std::uint32_t type = 0; type < structure.size(); ++type) {
            names.push_back(compared(structure.queryFullName(type)));
            numbers.emplace(names.back(), type);
        }
    }

    const TypeStructure& structure;
    std::vector<std::string_view> names; // by type
    Numbers numbers;                     // the first type of a name: that one counts

    CString contentName(std::string_view typeName) { return CString(compared(typeName)); }

private:
    std::string_view compared(std::string_view name)
    {
        if (from == to || !name.starts_with(from))
            return name;
        return moved.emplace_back(to + CString(name.substr(from.size())));
    }

    const CString& from;
    const CString& to;
    std::deque<CString> moved;
};

// A name, and how many parts of the type come before with the same one.
struct PartKey
{
    std::string_view name;
    std::size_t before;

    friend bool operator==(const PartKey&, const PartKey&) = default;
};

struct PartKeyHash
{
    std::size_t operator()(const PartKey& key) const { return KeyHash()(key.name) + key.before; }
};

// The parts of one type, in their order and by their keys.
struct Parts
{
    explicit Parts(std::vector<TypePart> list);

    const TypePart* find(const PartKey& key) const
    {
        const auto found = numbers.find(key);
        return found == numbers.end() ? nullptr : &all[found->second];
    }

    std::vector<TypePart> all;
    std::vector<PartKey> keys;
    std::unordered_map<PartKey, std::size_t, PartKeyHash> numbers;
};

Parts::Parts(std::vector<TypePart> list) : all(std::move(list))
{
    Numbers met;
    for (const TypePart& part : all) {
        keys.push_back({part.name, met[part.name]++});
        numbers.emplace(keys.back(), numbers.size());
    }
}

// A type by its folder and name.
CString shownType(std::string_view name)
{
    return CString(name) + (name.empty() || name.ends_with('\\') ? kUnnamed : "");
}

CString shownPart(const TypePart& part)
{
    return part.name.empty() && part.kind != TypePart::component ? kUnnamed : part.name;
}

CString contentOf(const TypeStructure& structure, const TypePart& part)
{
    const TypeContent content = structure.contentOf(part.typeName);
    return content.typeName + content.repeats;
}

class Comparison
{
public:
    Comparison(Side& before, Side& after) : before(before), after(after) {}

    std::vector<TypeChange> changes;

    void compareTypes()
    {
        for (std::uint32_t type = 0; type < after.names.size(); ++type) {
            const std::string_view name = after.names[type];
            if (after.numbers.at(name) != type)
                continue;
            if (const auto known = before.numbers.find(name); known != before.numbers.end())
                compareType(static_cast<std::uint32_t>(known->second), type);
            else
                changes.push_back({TypeChange::typeAdded, after.structure.kindOf(type), shownType(name), {}, {}, {}});
        }
        for (std::uint32_t type = 0; type < before.names.size(); ++type)
            if (const std::string_view name = before.names[type];
                before.numbers.at(name) == type && !after.numbers.contains(name))
                changes.push_back(
                    {TypeChange::typeRemoved, before.structure.kindOf(type), shownType(name), {}, {}, {}});
    }

private:
    void compareType(std::uint32_t old, std::uint32_t now)
    {
        const CString name = shownType(after.names[now]);
        const std::string_view oldKind = before.structure.kindOf(old), kind = after.structure.kindOf(now);
        if (kind != oldKind) { // their parts have nothing in common
            changes.push_back({TypeChange::kindChanged, "kind", name, {}, CString(oldKind), CString(kind)});
            return;
        }
        const Parts oldParts(before.structure.parts(old)), parts(after.structure.parts(now));
        for (std::size_t i = 0; i < parts.all.size(); ++i) {
            const TypePart& part = parts.all[i];
            if (const TypePart* known = oldParts.find(parts.keys[i]))
                comparePart(name, *known, part);
            else
                changes.push_back({part.kind == TypePart::constant ? TypeChange::constantAdded : TypeChange::fieldAdded,
                                   kPartNames[part.kind],
                                   name,
                                   shownPart(part),
                                   {},
                                   contentOf(after.structure, part)});
        }
        for (std::size_t i = 0; i < oldParts.all.size(); ++i)
            if (const TypePart& part = oldParts.all[i]; !parts.find(oldParts.keys[i]))
                changes.push_back(
                    {part.kind == TypePart::constant ? TypeChange::constantRemoved : TypeChange::fieldRemoved,
                     kPartNames[part.kind],
                     name,
                     shownPart(part),
                     contentOf(before.structure, part),
                     {}});
    }

    void comparePart(const CString& type, const TypePart& old, const TypePart& now)
    {
        const TypeContent was = before.structure.contentOf(old.typeName), is = after.structure.contentOf(now.typeName);
        if (before.contentName(was.typeName) != is.typeName)
            changes.push_back({TypeChange::contentChanged, "type", type, shownPart(now), was.typeName, is.typeName});
        if (was.repeats != is.repeats)
            changes.push_back({TypeChange::repetitionChanged, "repetition", type, shownPart(now), inWords(was.repeats),
                               inWords(is.repeats)});
    }

    Side& before;
    Side& after;
};

// The deepest folder that all types lie in, with a backslash at its end; empty if there is none.
CString commonFolder(const TypeStructure& structure)
{
    std::string_view common;
    for (std::uint32_t type = 0; type < structure.size(); ++type) {
        const std::string_view name = structure.queryFullName(type);
        if (type == 0)
            common = name;
        const std::size_t same = static_cast<std::size_t>(std::ranges::mismatch(common, name).in1 - common.begin());
        const std::size_t end = common.substr(0, same).rfind('\\');
        common = common.substr(0, end == common.npos ? 0 : end + 1);
    }
    return CString(common);
}

} // namespace

const char* idOf(TypeChange::Id id)
{
    return kChanges[id].id;
}

bool breaks(TypeChange::Id id, Reader reader)
{
    return (reader != Reader::writers && kChanges[id].breaksReaders) ||
           (reader != Reader::readers && kChanges[id].breaksWriters);
}

TypeChange::Id changeCalled(std::string_view text)
{
    const auto* const row = std::ranges::find(kChanges, text, &ChangeRow::id);
    return static_cast<TypeChange::Id>(row - std::begin(kChanges));
}

TypeFolders movedFolders(const TypeStructure& before, const TypeStructure& after)
{
    TypeFolders folders{commonFolder(before), commonFolder(after)};
    bool haveCommonName = folders.areEqual() || before.size() == 0;
    for (std::uint32_t type = 0; type < before.size() && !haveCommonName; ++type)
        haveCommonName = after.find(before.queryFullName(type)) != TypeStructure::kNone;
    return haveCommonName ? TypeFolders() : folders;
}

std::vector<TypeChange> typeChanges(const TypeStructure& before, const TypeStructure& after, const TypeFolders& folders)
{
    Side old(before, folders.before, folders.after), now(after, folders.after, folders.after);
    Comparison comparison(old, now);
    comparison.compareTypes();
    return std::move(comparison.changes);
}
