// What MsgBase does after the parse: tables for what repeats, and the order in which the types come out.
#include "Formats/MsgBase.h"

#include <algorithm>

void MsgBase::onAfterParse()
{
    makeTables();
    orderedList.clear();
    listedNames.clear();
    namesAreListed = false;
    typeCount = 0;
    lastClimb = 0;
    climbsLeft = 100'000 + 2 * usages.size();
    for (std::size_t i = 0; i < usages.size(); ++i) {
        if (i + kAhead < usages.size())
            __builtin_prefetch(usages[i + kAhead]->element);
        orderList(usages[i]->element);
    }
    placings = {};
    listedNames.clear();
}

void MsgBase::makeTables()
{
    CString tableName;
    for (std::size_t i = 0; i < usages.size(); ++i) {
        if (i + kAhead < usages.size())
            __builtin_prefetch(usages[i + kAhead]->element);
        ChildElement* usage = usages[i];
        Element* element = usage->element;
        if (usage->instances <= 1 || element->isAttribute)
            continue;
        tableName.assign("t_").append(element->queryBaseName());
        if (element->isPrimitive())
            element->setPrimitiveType();
        Element* table = findElement(tableName);
        if (!table)
            table = makeTable(*usage, tableName);
        element->addParent(table);
        usage->element = table;
        usage->instances = 1;
    }
}

Element* MsgBase::makeTable(ChildElement& usage, const CString& tableName)
{
    void* place = memory.allocate(sizeof(Element), alignof(Element));
    Element* table = own(new (place) Element(*usage.element, &memory));
    table->setName(tableName);
    table->description.reset();
    table->describeByName();
    table->type = Element::typeTable;
    table->addChild(usage.element);
    table->addParent(usage.parent);
    elements.store(table);
    if (usage.parent)
        usage.parent->toTable(usage.element, table);
    return table;
}

void MsgBase::orderList(Element* element)
{
    if (element->placed)
        return;
    beginPlacing(element, newClimb());
    while (!placings.empty()) {
        Placing& top = placings.back();
        if (!top.parentsDone) {
            if (Element* parent = nextParentToPlace(top)) {
                beginPlacing(parent, climbOf(top));
                continue;
            }
            top.parentsDone = true;
            if (!top.element->placed) // a descent from a parent may have come by here
                place(*top.element);
        }
        if (Element* child = nextChildToPlace(*top.element))
            beginPlacing(child, newClimb());
        else
            placings.pop_back();
    }
}

void MsgBase::beginPlacing(Element* element, std::uint32_t climb)
{
    climbsLeft -= climbsLeft > 0;
    prefetch(element->parents);
    element->climb = climb;
    placings.push_back({element, climb, element->nextParent, false});
}

// The next parent that isn't placed and isn't on the climb in hand. Parents known to be placed are never looked at
// again, or an element with many parents would cost their square.
Element* MsgBase::nextParentToPlace(Placing& placing)
{
    Element& element = *placing.element;
    while (element.nextParent < element.parents.size() && element.parents[element.nextParent]->placed)
        ++element.nextParent;
    placing.nextParent = std::max(placing.nextParent, element.nextParent);
    while (placing.nextParent < element.parents.size()) {
        Element* parent = element.parents[placing.nextParent++];
        if (!parent->placed && parent->climb != climbOf(placing))
            return parent;
        climbsLeft -= climbsLeft > 0;
    }
    return nullptr;
}

Element* MsgBase::nextChildToPlace(Element& element)
{
    for (; element.nextChild < element.children.size(); ++element.nextChild) {
        Element* child = element.children[element.nextChild];
        if (!child->placed && (climbsLeft > 0 || child->climb != lastClimb))
            return child;
    }
    return nullptr;
}

// Each descent starts a climb of its own, which in a large web of cycles may pass the same waiting elements again and
// again, the square of their number in all. When the steps set aside for that are used up, all further descents share
// one climb: an element that waits on it is passed over, and what is left is done in time linear in the links.
std::uint32_t MsgBase::newClimb()
{
    return climbsLeft > 0 ? ++lastClimb : lastClimb;
}

std::uint32_t MsgBase::climbOf(const Placing& placing) const
{
    return climbsLeft > 0 ? placing.climb : lastClimb;
}

void MsgBase::place(Element& element)
{
    element.placed = 1;
    addToOrderedList(&element);
    typeCount += element.isTypeOfItsOwn();
}

void MsgBase::addToOrderedList(Element* element)
{
    bool refersToListed = false;
    prefetch(element->children);
    for (const Element* child : element->children) {
        const std::string_view known = child->knownType;
        if (known.empty())
            continue;
        // The short name that is left of the known type when the child's folder is taken off its front.
        const std::size_t folder = child->queryPath().size();
        if (isListed(folder < known.size() ? known.substr(folder) : std::string_view())) {
            refersToListed = true;
            break;
        }
    }
    if (refersToListed)
        orderedList.push_back(element);
    else
        orderedList.push_front(element);
    if (namesAreListed)
        listedNames.store(element);
}

bool MsgBase::isListed(std::string_view name)
{
    if (!namesAreListed) {
        for (Element* listed : orderedList)
            listedNames.store(listed);
        namesAreListed = true;
    }
    return listedNames.find(name) != nullptr;
}
