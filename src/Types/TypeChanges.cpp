#include "Types/TypeChanges.h"

#include "Types/TypeStructure.h"

#include <algorithm>
#include <deque>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

// Both sides get an index of their types by the names under which they are compared. A type in both is compared part by
// part. Nearly all types are equal, so their parts are first compared in order, without keys; only a type that differs
// gets tables of its parts. The type of a part is compared only by name, because that type itself is compared once.
namespace {

// A row for each TypeChange::Id. A removed constant breaks writers, because they may still send it. A removed field
// breaks both, because readers may need it and writers may fill it.
struct ChangeRow
{
    const char* id;
    bool breaksReaders;
    bool breaksWriters;
};

constexpr ChangeRow kChanges[] = {
    {"type-added", false, false},       {"type-removed", true, true},
    {"kind-changed", true, true},       {"field-added", false, false},
    {"field-removed", true, true},      {"constant-added", true, false}, // readers may switch on it
    {"constant-removed", false, true},  {"type-changed", true, true},
    {"repetition-changed", true, true}, {"folder-changed", true, true},
};
static_assert(std::size(kChanges) == TypeChange::idCount);

// Shown for the empty name of a type, field or constant, which type documents can contain.
constexpr const char* kUnnamed = "(no name)";
// By TypePart::Kind.
constexpr const char* kPartNames[] = {"field", "constant", "component"};

// Returns TypeContent::repeats in words for the user; sizes and nested tables stay as they are written.
CString inWords(const CString& repeats)
{
    return repeats.empty() ? "once" : repeats == "*" ? "repeated" : repeats;
}

// The types of one side, by the names under which they are compared. These are views of the structure's names or of
// `moved`, so the structure must outlive the object.
class Side
{
public:
    struct Type
    {
        std::string_view name;
        std::uint32_t number;
    };

    /// Types in the folder `from` are compared as if they were in `to`. Both texts must outlive the object. The index
    /// points into `types`, so these are complete before the first is stored.
    Side(const TypeStructure& structure, const CString& from, const CString& to) :
        structure(structure), from(from), to(to)
    {
        types.reserve(structure.size());
        for (std::uint32_t type = 0; type < structure.size(); ++type)
            types.push_back({compared(structure.queryFullName(type)), type});
        byName.reserve(types.size());
        for (const Type& type : types)
            if (const std::uint32_t hash = keyHash(type.name); !byName.find(type.name, hash))
                byName.store(&type, hash);
    }

    /// Returns the first type of a name, which is the one that is compared, or null.
    const Type* find(std::string_view name) const { return byName.find(name); }

    /// Returns whether a type of this side is compared under a name. Compares in place: a moved name is only built for
    /// the types of the import, not for each part.
    bool isCalled(std::string_view own, std::string_view name) const
    {
        if (from == to || !own.starts_with(from))
            return own == name;
        return name.starts_with(to) && name.substr(to.size()) == own.substr(from.size());
    }

    const TypeStructure& structure;
    std::vector<Type> types;

private:
    std::string_view compared(std::string_view name)
    {
        if (from == to || !name.starts_with(from))
            return name;
        return moved.emplace_back(to + CString(name.substr(from.size())));
    }

    const CString& from;
    const CString& to;
    KeyedTable<const Type, &Type::name> byName;
    std::deque<CString> moved;
};

// The parts of one type, in order and by key: the name, and the number of earlier parts of the type with the same name.
// So the first of two fields of one name is compared with the first on the other side.
struct Parts
{
    using Key = std::pair<std::string_view, std::size_t>;

    explicit Parts(std::span<const TypePart> list) : all(list)
    {
        std::unordered_map<std::string_view, std::size_t, KeyHash> met;
        for (const TypePart& part : all) {
            keys.emplace_back(part.name, met[part.name]++);
            byKey.emplace(keys.back(), &part);
        }
    }

    const TypePart* find(const Key& key) const
    {
        const auto found = byKey.find(key);
        return found == byKey.end() ? nullptr : found->second;
    }

    std::span<const TypePart> all;
    std::vector<Key> keys;
    std::map<Key, const TypePart*> byKey;
};

// Returns a type's full name for the user.
CString shownType(std::string_view name)
{
    return CString(name) + (name.empty() || name.ends_with('\\') ? kUnnamed : "");
}

CString shownPart(const TypePart& part)
{
    return CString(part.name.empty() && part.kind != TypePart::component ? kUnnamed : part.name);
}

CString contentOf(const TypeStructure& structure, const TypePart& part)
{
    const TypeContent content = structure.contentOf(part);
    return CString(content.typeName) + content.repeats;
}

// Compares the types of two sides, and collects the changes in the order of the newer side.
class Comparison
{
public:
    Comparison(Side& before, Side& after, const std::vector<bool>& areEqual) :
        before(before), after(after), areEqual(areEqual)
    {}

    std::vector<TypeChange> changes;

    void compareTypes()
    {
        for (const Side::Type& type : after.types) {
            if (type.number < areEqual.size() && areEqual[type.number])
                continue;
            // Skips later types of the same name.
            if (after.find(type.name) != &type)
                continue;
            if (const Side::Type* const known = before.find(type.name))
                compareType(known->number, type);
            else
                changes.push_back({TypeChange::typeAdded, after.structure.kindOf(type.number), shownType(type.name)});
        }
        std::vector<const Side::Type*> removed;
        for (const Side::Type& type : before.types)
            if (before.find(type.name) == &type && !after.find(type.name))
                removed.push_back(&type);
        // The order of the types would depend on which of them are in `before`.
        std::ranges::stable_sort(
            removed, {}, [this](const Side::Type* type) { return before.structure[type->number].queryNumber(); });
        for (const Side::Type* const type : removed)
            changes.push_back({TypeChange::typeRemoved, before.structure.kindOf(type->number), shownType(type->name)});
    }

private:
    void compareType(std::uint32_t old, const Side::Type& now)
    {
        const std::string_view oldKind = before.structure.kindOf(old), kind = after.structure.kindOf(now.number);
        if (kind != oldKind) { // parts of different kinds are not comparable
            changes.push_back(
                {TypeChange::kindChanged, "kind", shownType(now.name), {}, CString(oldKind), CString(kind)});
            return;
        }
        const std::span<const TypePart> oldParts = before.structure.parts(old),
                                        parts = after.structure.parts(now.number);
        if (!std::ranges::equal(oldParts, parts, [this](const auto& was, const auto& is) { return isSame(was, is); }))
            compareParts(Parts(oldParts), Parts(parts), shownType(now.name));
    }

    // Returns whether two parts have the same name and content. The usual case, which needs no keys.
    bool isSame(const TypePart& old, const TypePart& now) const
    {
        if (old.name != now.name)
            return false;
        const TypeContent was = before.structure.contentOf(old), is = after.structure.contentOf(now);
        return before.isCalled(was.typeName, is.typeName) && was.repeats == is.repeats;
    }

    void compareParts(const Parts& oldParts, const Parts& parts, const CString& name)
    {
        for (std::size_t i = 0; i < parts.all.size(); ++i) {
            const TypePart& part = parts.all[i];
            if (const TypePart* known = oldParts.find(parts.keys[i]))
                comparePart(name, *known, part);
            else
                changes.push_back({part.kind == TypePart::constant ? TypeChange::constantAdded : TypeChange::fieldAdded,
                                   kPartNames[part.kind], name, shownPart(part), "", contentOf(after.structure, part)});
        }
        for (std::size_t i = 0; i < oldParts.all.size(); ++i)
            if (const TypePart& part = oldParts.all[i]; !parts.find(oldParts.keys[i]))
                changes.push_back(
                    {part.kind == TypePart::constant ? TypeChange::constantRemoved : TypeChange::fieldRemoved,
                     kPartNames[part.kind], name, shownPart(part), contentOf(before.structure, part)});
    }

    // A part whose type and repetition both differ gives two changes, which can be accepted separately.
    void comparePart(const CString& type, const TypePart& old, const TypePart& now)
    {
        const TypeContent was = before.structure.contentOf(old), is = after.structure.contentOf(now);
        if (!before.isCalled(was.typeName, is.typeName))
            changes.push_back({TypeChange::contentChanged, "type", type, shownPart(now), CString(was.typeName),
                               CString(is.typeName)});
        if (was.repeats != is.repeats)
            changes.push_back({TypeChange::repetitionChanged, "repetition", type, shownPart(now), inWords(was.repeats),
                               inWords(is.repeats)});
    }

    Side& before;
    Side& after;
    const std::vector<bool>& areEqual;
};

std::vector<std::string_view> namesOf(const TypeStructure& structure)
{
    std::vector<std::string_view> names;
    names.reserve(structure.size());
    for (std::uint32_t type = 0; type < structure.size(); ++type)
        names.push_back(structure.queryFullName(type));
    return names;
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

TypeChange::Id changeNamed(std::string_view text)
{
    const auto* const row = std::ranges::find(kChanges, text, &ChangeRow::id);
    return static_cast<TypeChange::Id>(row - std::begin(kChanges));
}

// The prefix only shrinks, so this is linear. It is cut at a backslash, because names that begin alike need not be in
// one folder.
CString commonFolder(std::span<const std::string_view> names)
{
    std::string_view common = names.empty() ? std::string_view() : names.front();
    for (const std::string_view name : names) {
        const std::size_t same = static_cast<std::size_t>(std::ranges::mismatch(common, name).in1 - common.begin());
        const std::size_t end = common.substr(0, same).rfind('\\');
        common = common.substr(0, end == common.npos ? 0 : end + 1);
    }
    return CString(common);
}

// If the sides have one full name in common, the types have not moved. The common folder can change for other reasons,
// for example because the newer side has a type in another folder.
TypeFolders movedFolders(const TypeStructure& before, const TypeStructure& after)
{
    const TypeFolders folders{commonFolder(namesOf(before)), commonFolder(namesOf(after))};
    bool haveMoved = false;
    for (std::uint32_t type = 0; type < before.size() && !folders.areEqual(); ++type) {
        const std::string_view name = before.queryFullName(type);
        if (after.find(name) != TypeStructure::kNone)
            return {};
        const CString moved = folders.after + CString(name.substr(folders.before.size()));
        haveMoved = haveMoved || after.find(moved) != TypeStructure::kNone;
    }
    return haveMoved ? folders : TypeFolders();
}

std::vector<TypeChange> typeChanges(const TypeStructure& before, const TypeStructure& after, const TypeFolders& folders,
                                    const std::vector<bool>& areEqual)
{
    Side old(before, folders.before, folders.after), now(after, folders.after, folders.after);
    Comparison comparison(old, now, areEqual);
    comparison.compareTypes();
    return std::move(comparison.changes);
}
