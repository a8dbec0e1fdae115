#include "Types/TypeStructure.h"

#include "Import/MsgBase.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

bool holdsComponent(const Element& element)
{
    return element.queryType() == Element::typeTable || element.queryType() == Element::typeArray;
}

// One backslash between folder and name, whichever of the two has it.
std::string_view plainName(std::string_view name)
{
    return name.starts_with("\\\\") ? name.substr(1) : name;
}

} // namespace

std::string_view shortName(std::string_view fullName)
{
    return fullName.substr(fullName.rfind('\\') + 1); // npos + 1 is 0
}

TypeStructure::TypeStructure(MsgBase& message)
{
    const auto count = static_cast<std::size_t>(message.beginEnum());
    index.reserve(count);
    while (const Element* element = message.enumNext()) {
        types.push_back({element, size(), CString(plainName(element->queryPath() + element->queryName()))});
        index.store(&types.back());
    }
    numberElements();
    collectUsers();
    numbers = {};
}

// A table of its own: in a KeyedTable each look-up would wait for memory three times instead of once, and there are as
// many as there are fields. Left without entries where two types have the same name, which only names can settle.
void TypeStructure::numberElements()
{
    numbers.resize(std::bit_ceil(types.size() * 2 + 1));
    if (index.size() == types.size())
        for (const Type& type : types)
            numbers[slotOf(type.element)] = {type.element, type.number};
}

std::size_t TypeStructure::slotOf(const Element* element) const
{
    const std::uint64_t hash = reinterpret_cast<std::uintptr_t>(element) / alignof(Element) * 0x9E3779B97F4A7C15;
    std::size_t slot = (hash >> 32) & (numbers.size() - 1);
    while (numbers[slot].element && numbers[slot].element != element)
        slot = (slot + 1) & (numbers.size() - 1);
    return slot;
}

std::uint32_t TypeStructure::find(std::string_view fullName) const
{
    const Type* type = index.find(plainName(fullName));
    return type ? type->number : kNone;
}

const char* TypeStructure::kindOf(std::uint32_t type) const
{
    static constexpr const char* kKinds[] = {"enumeration", "array", "record", "table"};
    return kKinds[(*this)[type].queryType()];
}

std::vector<TypePart> TypeStructure::parts(std::uint32_t type) const
{
    const Element& element = (*this)[type];
    if (holdsComponent(element))
        return {{TypePart::component, {}, {}, element.queryComponentType()}};
    std::vector<TypePart> parts;
    parts.reserve(element.queryChildren().size());
    const bool isRecord = element.queryType() == Element::typeRow;
    CString description, typeName;
    for (const Element* child : element.queryChildren()) {
        if (!isRecord)
            parts.push_back({TypePart::constant, child->queryName(), child->queryDescription(), {}});
        else if (child->isField())
            parts.push_back({TypePart::field, child->queryFieldName(),
                             CString(child->queryFieldDescription(description)),
                             CString(child->queryFieldType(element, typeName))});
    }
    return parts;
}

std::size_t TypeStructure::partCount(std::uint32_t type) const
{
    const Element& element = (*this)[type];
    const ElementList& children = element.queryChildren();
    if (element.queryType() == Element::typeEnum)
        return children.size();
    if (element.queryType() != Element::typeRow)
        return 1;
    return static_cast<std::size_t>(
        std::count_if(children.begin(), children.end(), [](const Element* child) { return child->isField(); }));
}

template <class Action>
void TypeStructure::forEachTypeName(std::uint32_t type, const Action& action) const
{
    const Element& element = (*this)[type];
    if (holdsComponent(element))
        return action(element.queryComponentType());
    if (element.queryType() != Element::typeRow)
        return;
    CString room;
    for (const Element* child : element.queryChildren())
        if (child->isField())
            action(child->queryFieldType(element, room));
}

// The type that a record has a field of through `child`, where the child is that type: nearly always, and found
// without making its full name. Else kNone.
std::uint32_t TypeStructure::numberOf(const Element& child, const Element& record) const
{
    const bool namesItself = child.queryType() == Element::typeTable || &child.queryBaseName() == &child.queryName();
    if (!namesItself || child.queryPath() != record.queryPath())
        return kNone;
    return numbers[slotOf(&child)].number;
}

template <class Action>
void TypeStructure::forEachUse(std::uint32_t user, const Action& action) const
{
    const Element& element = (*this)[user];
    if (element.queryType() != Element::typeRow)
        return forEachTypeName(user, [&](std::string_view typeName) { action(find(typeName)); });
    CString room;
    for (const Element* child : element.queryChildren()) {
        if (!child->isField())
            continue;
        const std::uint32_t known = child->isTypeOfItsOwn() ? numberOf(*child, element) : kNone;
        action(known != kNone ? known : find(child->queryFieldType(element, room)));
    }
}

// Counted first, so that all users stand in one list: most types have one or two.
void TypeStructure::collectUsers()
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> uses; // who is used, by whom
    std::vector<std::uint32_t> lastUser(size(), kNone);
    firstUser.assign(size() + 1, 0);
    for (std::uint32_t user = 0; user < size(); ++user) {
        forEachUse(user, [&](std::uint32_t used) {
            if (used == kNone || std::exchange(lastUser[used], user) == user)
                return;
            uses.emplace_back(used, user);
            ++firstUser[used + 1];
        });
    }
    for (std::uint32_t type = 0; type < size(); ++type)
        firstUser[type + 1] += firstUser[type];
    userList.resize(uses.size());
    std::vector<std::uint32_t> next(firstUser.begin(), firstUser.end() - 1);
    for (const auto& [used, user] : uses)
        userList[next[used]++] = user;
}

std::span<const std::uint32_t> TypeStructure::users(std::uint32_t type) const
{
    return std::span(userList).subspan(firstUser[type], firstUser[type + 1] - firstUser[type]);
}

TypeContent TypeStructure::contentOf(std::string_view typeName) const
{
    constexpr std::size_t kDeepest = 16; // levels of tables in tables; more are of no use to anybody who looks
    TypeContent content{CString(typeName), find(typeName), {}};
    std::vector<std::uint32_t> passed;
    while (content.type != kNone && passed.size() < kDeepest) {
        const Element& element = (*this)[content.type];
        if (!holdsComponent(element) || std::find(passed.begin(), passed.end(), content.type) != passed.end())
            break;
        passed.push_back(content.type);
        content.repeats += element.queryType() == Element::typeTable ? "*" : "[" + element.querySize() + "]";
        content.typeName = element.queryComponentType();
        content.type = find(content.typeName);
    }
    return content;
}

std::vector<std::uint32_t> TypeStructure::reach(std::uint32_t start, std::size_t limit, bool& isWhole) const
{
    std::vector<std::uint32_t> reached{start};
    std::vector<bool> seen(size());
    seen[start] = true;
    isWhole = true;
    for (std::size_t at = 0; at < reached.size() && isWhole; ++at)
        forEachTypeName(reached[at], [&](std::string_view typeName) {
            const std::uint32_t type = contentOf(typeName).type;
            if (type == kNone || seen[type])
                return;
            isWhole = reached.size() < limit;
            if (!isWhole)
                return;
            seen[type] = true;
            reached.push_back(type);
        });
    return reached;
}
