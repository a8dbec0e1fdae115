#include "Types/TypeChanges.h"

#include "Types/TypeStructure.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace {

using Numbers = std::unordered_map<std::string_view, std::size_t, KeyHash>;

constexpr const char* kPartNames[] = {"field", "constant", "component"};

// As the type's document writes it: one backslash between folder and name, whoever of the two has it.
std::string_view nameOf(const TypeStructure& structure, std::uint32_t type)
{
    const std::string_view name = structure.queryFullName(type);
    return name.starts_with("\\\\") ? name.substr(1) : name;
}

CString inWords(const CString& repeats)
{
    return repeats.empty() ? "once" : repeats == "*" ? "repeated" : repeats;
}

struct Comparison
{
    const TypeStructure& before;
    const TypeStructure& after;
    std::vector<TypeChange> changes;

    void compareType(std::uint32_t old, std::uint32_t now);
    void comparePart(const CString& name, const TypePart& old, const TypePart& now);
};

CString partName(std::string_view type, const TypePart& part)
{
    return CString(type) + (part.name.empty() ? "" : "." + part.name);
}

CString contentOf(const TypeStructure& structure, const TypePart& part)
{
    const TypeContent content = structure.contentOf(part.typeName);
    return content.typeName + content.repeats;
}

Numbers partNumbers(const std::vector<TypePart>& parts)
{
    Numbers numbers;
    for (std::size_t i = 0; i < parts.size(); ++i)
        numbers.emplace(parts[i].name, i);
    return numbers;
}

Numbers typeNumbers(const TypeStructure& structure)
{
    Numbers numbers;
    for (std::uint32_t type = 0; type < structure.size(); ++type)
        numbers.emplace(nameOf(structure, type), type);
    return numbers;
}

void Comparison::compareType(std::uint32_t old, std::uint32_t now)
{
    const std::string_view name = nameOf(after, now);
    const std::string_view oldKind = before.kindOf(old), kind = after.kindOf(now);
    if (kind != oldKind) { // their parts have nothing in common
        changes.push_back({TypeChange::changed, "kind", CString(name), CString(oldKind), CString(kind)});
        return;
    }
    const std::vector<TypePart> oldParts = before.parts(old), parts = after.parts(now);
    const Numbers oldNumbers = partNumbers(oldParts), numbers = partNumbers(parts);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto known = oldNumbers.find(parts[i].name);
        if (numbers.at(parts[i].name) != i) // a second one of that name
            continue;
        if (known != oldNumbers.end())
            comparePart(partName(name, parts[i]), oldParts[known->second], parts[i]);
        else
            changes.push_back({TypeChange::added,
                               kPartNames[parts[i].kind],
                               partName(name, parts[i]),
                               {},
                               contentOf(after, parts[i])});
    }
    for (std::size_t i = 0; i < oldParts.size(); ++i)
        if (!numbers.contains(oldParts[i].name) && oldNumbers.at(oldParts[i].name) == i)
            changes.push_back({TypeChange::removed,
                               kPartNames[oldParts[i].kind],
                               partName(name, oldParts[i]),
                               contentOf(before, oldParts[i]),
                               {}});
}

void Comparison::comparePart(const CString& name, const TypePart& old, const TypePart& now)
{
    const TypeContent was = before.contentOf(old.typeName), is = after.contentOf(now.typeName);
    if (was.typeName != is.typeName)
        changes.push_back({TypeChange::changed, "type", name, was.typeName, is.typeName});
    if (was.repeats != is.repeats)
        changes.push_back({TypeChange::changed, "repetition", name, inWords(was.repeats), inWords(is.repeats)});
}

} // namespace

std::vector<TypeChange> typeChanges(const TypeStructure& before, const TypeStructure& after)
{
    Comparison comparison{before, after, {}};
    const Numbers oldNumbers = typeNumbers(before), numbers = typeNumbers(after);
    for (std::uint32_t type = 0; type < after.size(); ++type) {
        const std::string_view name = nameOf(after, type);
        if (numbers.at(name) != type)
            continue; // of several types of one name the one counts that a look-up finds
        if (const auto known = oldNumbers.find(name); known != oldNumbers.end())
            comparison.compareType(static_cast<std::uint32_t>(known->second), type);
        else
            comparison.changes.push_back({TypeChange::added, after.kindOf(type), CString(name), {}, {}});
    }
    for (std::uint32_t type = 0; type < before.size(); ++type)
        if (const std::string_view name = nameOf(before, type); !numbers.contains(name) && oldNumbers.at(name) == type)
            comparison.changes.push_back({TypeChange::removed, before.kindOf(type), CString(name), {}, {}});
    return std::move(comparison.changes);
}

bool isCompatible(const std::vector<TypeChange>& changes)
{
    return std::all_of(changes.begin(), changes.end(),
                       [](const TypeChange& change) { return change.kind == TypeChange::added; });
}
