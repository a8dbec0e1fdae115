#include "Types/TypeStructure.h"

#include "Import/MsgBase.h"

#include <algorithm>
#include <array>
#include <unordered_set>

// The structure is read from the importer's elements on demand. It stores only data that would need a search: an index
// of the full names, and the types by the numbers of their elements. Parts are views that each call makes again: with
// copies of all parts, a JSON list of 50,000 types takes twice as long.
namespace {

// Returns whether a type has a component instead of fields or constants.
bool holdsComponent(const Element& element)
{
    return element.queryType() == Element::typeTable || element.queryType() == Element::typeArray;
}

} // namespace

std::string_view plainName(std::string_view fullName)
{
    return fullName.starts_with("\\\\") ? fullName.substr(1) : fullName;
}

std::string_view shortName(std::string_view fullName)
{
    return fullName.substr(fullName.rfind('\\') + 1); // npos + 1 is 0
}

TextPieces TypePart::description() const
{
    if (!element)
        return "";
    return kind == field ? element->queryFieldDescription() : element->queryDescriptionPieces();
}

TypeStructure::TypeStructure(MsgBase& message)
{
    const auto count = static_cast<std::size_t>(message.beginEnum());
    index.reserve(count);
    CString room;
    // Only tables and arrays need their component's name; it is stored because its two pieces have to be joined.
    while (const Element* element = message.enumNext()) {
        types.push_back({element, size(), CString(plainName(element->queryPath() + element->queryName())),
                         holdsComponent(*element) ? CString(element->queryComponentType().joined(room)) : CString()});
        // Of several types of one name, the last one is found.
        index.store(&types.back());
        if (const std::uint32_t number = element->queryNumber(); number != Element::kNoNumber) {
            numbers.resize(std::max<std::size_t>(numbers.size(), number + std::size_t{1}), kNone);
            numbers[number] = types.back().number;
        }
    }
    if (!hasUniqueNames()) // several types of one name are only found by name
        numbers.clear();
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

// Reuses the storage of the last call, so a walk over all types allocates little.
std::span<const TypePart> TypeStructure::parts(std::uint32_t type) const
{
    lastParts.clear();
    lastTypeNames.clear();
    const Element& element = (*this)[type];
    if (holdsComponent(element)) {
        const CString& component = types[type].component;
        lastParts.push_back({TypePart::component, nullptr, {}, component, find(component)});
        return lastParts;
    }
    const bool isRecord = element.queryType() == Element::typeRow;
    for (const Element* child : element.queryChildren())
        if (!isRecord)
            lastParts.push_back({TypePart::constant, child, child->queryName(), {}, kNone});
        else if (child->isField())
            lastParts.push_back(partOf(*child, element));
    return lastParts;
}

// Returns a field of a record. Fast path: the type is nearly always the child itself, and is found without its full
// name. Otherwise the name in the document is looked up, because its folder can differ from the child's.
TypePart TypeStructure::partOf(const Element& child, const Element& record) const
{
    TypePart part{TypePart::field, &child, child.queryFieldName(), {}, kNone};
    if (child.hasOwnDocument()) {
        part.type = numberOf(child, record);
        if (part.type != kNone) {
            part.typeName = types[part.type].fullName;
            return part;
        }
        part.typeName = child.queryFieldType(record).joined(lastTypeNames.emplace_back());
    } else {
        part.typeName = child.queryFieldType(record).first;
    }
    if (part.typeName.find('\\') != part.typeName.npos) // all full names have one
        part.type = find(part.typeName);
    return part;
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

// Returns the type of a field if that is the child itself and has its name; else kNone. The name in the document
// consists of the record's folder and, for a record, the child's base name, so neither may differ from the child's own
// folder and name. The addresses are equal if there is no separate base name. If plainName() has shortened the full
// name, the lengths differ.
std::uint32_t TypeStructure::numberOf(const Element& child, const Element& record) const
{
    const bool namesItself = child.queryType() == Element::typeTable || &child.queryBaseName() == &child.queryName();
    if (!namesItself || child.queryPath() != record.queryPath() || child.queryNumber() >= numbers.size())
        return kNone;
    const std::uint32_t number = numbers[child.queryNumber()];
    const std::size_t length = child.queryPath().size() + child.queryName().size();
    return number != kNone && types[number].fullName.size() == length ? number : kNone;
}

// Collects the users of all types at once. The parts of a user come one after the other, so it is already in a list if
// it is the last one there.
std::span<const std::uint32_t> TypeStructure::users(std::uint32_t type) const
{
    if (userLists.empty()) {
        userLists.resize(size());
        for (std::uint32_t user = 0; user < size(); ++user)
            for (const TypePart& part : parts(user))
                if (part.type != kNone && (userLists[part.type].empty() || userLists[part.type].back() != user))
                    userLists[part.type].push_back(user);
    }
    return userLists[type];
}

// Each level is looked up by its name. The types passed are few, so a search among them is faster than a set.
TypeContent TypeStructure::contentOf(const TypePart& part) const
{
    TypeContent content{part.typeName, part.type, {}};
    std::array<std::uint32_t, kDeepest> passed;
    for (std::size_t level = 0; content.type != kNone && level < kDeepest; ++level) {
        const Element& element = *types[content.type].element;
        const auto end = passed.begin() + level;
        if (!holdsComponent(element) || std::find(passed.begin(), end, content.type) != end)
            break;
        *end = content.type;
        content.repeats +=
            element.queryType() == Element::typeTable ? "*" : "[" + CString(element.sizeInDocument()) + "]";
        content.typeName = types[content.type].component;
        content.type = find(content.typeName);
    }
    return content;
}

// Calls `action` with each type that is one step away. A type is passed several times if several parts lead to it.
// Towards users, the search goes through tables and arrays breadth-first until it finds records, because a table can be
// the component of many others.
template <class Action>
void TypeStructure::forEachNeighbour(std::uint32_t type, Direction direction, const Action& action) const
{
    if (direction == Direction::uses) {
        for (const TypePart& part : parts(type))
            if (const std::uint32_t held = contentOf(part).type; held != kNone)
                action(held);
        return;
    }
    std::vector<std::uint32_t> holders{type}; // including the tables and arrays passed on the way
    std::unordered_set<std::uint32_t> passed{type};
    for (std::size_t at = 0; at < holders.size(); ++at)
        for (const std::uint32_t user : users(holders[at]))
            if (!holdsComponent((*this)[user]))
                action(user);
            else if (passed.insert(user).second)
                holders.push_back(user);
}

// Breadth-first, one level for each step, once for each direction. isSeen ends cycles within a direction. isReached is
// for both: a type that the other direction has reached is not listed again, but the search continues from it, because
// other types follow in this direction.
std::vector<std::uint32_t> TypeStructure::reach(std::uint32_t start, std::size_t limit, bool& isComplete,
                                                Direction direction, std::size_t depth) const
{
    std::vector<std::uint32_t> reached{start};
    std::vector<bool> isReached(size());
    isReached[start] = true;
    isComplete = true;
    for (const Direction each : {Direction::uses, Direction::users}) {
        if (direction != each && direction != Direction::both)
            continue;
        std::vector<bool> isSeen(size());
        isSeen[start] = true;
        std::vector<std::uint32_t> level{start}, next;
        for (std::size_t step = 0; step < depth && !level.empty(); ++step, level.swap(next), next.clear())
            for (std::size_t at = 0; at < level.size() && isComplete; ++at)
                forEachNeighbour(level[at], each, [&](std::uint32_t type) {
                    if (!isComplete || isSeen[type])
                        return;
                    isSeen[type] = true;
                    next.push_back(type);
                    if (isReached[type])
                        return;
                    isComplete = reached.size() < limit;
                    if (!isComplete)
                        return;
                    isReached[type] = true;
                    reached.push_back(type);
                });
    }
    return reached;
}
