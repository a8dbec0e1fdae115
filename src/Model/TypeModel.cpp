#include "Model/TypeModel.h"

#include "Model/TypeOrder.h"

void TypeModel::clear()
{
    elements.clear();
    usages.clear();
    order.clear();
    for (Element* element : ownedElements)
        element->~Element();
    ownedElements.clear();
    memory.release();
}

Element* TypeModel::findElement(std::string_view name) const
{
    return mergesByName && !name.empty() ? elements.find(name) : nullptr;
}

ChildElement* TypeModel::findUsage(const Fingerprint& usageKey) const
{
    return usageKey.isEmpty() ? nullptr : usages.find(usageKey);
}

Element* TypeModel::addElement(const Fingerprint& usageKey, const CString& path, const CString& name,
                               const CString& description, Element::ElementTypes type, Element* parent)
{
    const auto [element, isNew] = findOrMake(path, name, type);
    if (isNew)
        element->setDescription(description);
    addUsage(usageKey, element, parent);
    return element;
}

Element* TypeModel::addElement(const Fingerprint& usageKey, const CString& path, std::string_view name,
                               Element::ElementTypes type, Element* parent)
{
    const auto [element, isNew] = findOrMake(path, name, type);
    if (isNew)
        element->describeByName();
    addUsage(usageKey, element, parent);
    return element;
}

void TypeModel::addUsage(const Fingerprint& usageKey, Element* element, Element* parent)
{
    cancelPoint.pass();
    if (ChildElement* usage = findUsage(usageKey)) {
        usage->addInstance();
        if (usage->element == element && usage->parent == parent && !(parent && parent->isLinkedByHand))
            return; // linked when the usage was made
    } else {
        usages.store(std::pmr::polymorphic_allocator<>(&memory).new_object<ChildElement>(usageKey, element, parent));
    }
    if (parent)
        parent->link(element);
}

std::pair<Element*, bool> TypeModel::findOrMake(const CString& path, std::string_view name, Element::ElementTypes type)
{
    const std::uint32_t hash = keyHash(name);
    if (Element* known = mergesByName && !name.empty() ? elements.find(name, hash) : nullptr)
        return {known, false};
    Element* element = newElement(path, name, type);
    elements.store(element, hash);
    return {element, true};
}

Element* TypeModel::newElement(const CString& path, std::string_view name, Element::ElementTypes type)
{
    const auto isLast = [&] { // `path` may lack the backslash that the element's has
        return std::string_view(*lastPath).substr(0, path.size()) == path &&
               lastPath->size() == path.size() + !path.ends_with('\\');
    };
    if (!lastPath || !isLast())
        lastPath = std::make_shared<const CString>(path.ends_with('\\') ? path : path + '\\');
    void* place = memory.allocate(sizeof(Element), alignof(Element));
    return own(new (place) Element(lastPath, name, type, &memory));
}

Element* TypeModel::own(Element* element)
{
    element->setNumber(static_cast<std::uint32_t>(ownedElements.size()));
    ownedElements.push_back(element);
    return element;
}

void TypeModel::arrange()
{
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i]->setPlaced(false); // no other is
    order.clear();
    makeTables();
    TypeOrder placing(order, ownedElements);
    for (const ChildElement* usage : usages)
        placing.place(*usage->element);
}

void TypeModel::place(const Element& element)
{
    TypeOrder(order, ownedElements).place(element);
}

// Whether a usage repeats is only known when all have been declared. From then on it is one of the table.
void TypeModel::makeTables()
{
    CString tableName;
    for (std::size_t i = 0; i < usages.size(); ++i) {
        cancelPoint.pass();
        ChildElement* usage = usages[i];
        if (usage->instances <= 1 || usage->element->isAttribute)
            continue;
        Element* element = usage->element;
        tableName.assign("t_").append(element->queryBaseName());
        if (element->isPrimitive())
            element->setPrimitiveType();
        Element* table = findElement(tableName);
        if (!table)
            table = makeTable(*usage, tableName);
        else if (areTablesInAll && usage->parent && table->type == Element::typeTable)
            usage->parent->toTable(element, table);
        element->addParent(table);
        usage->element = table;
        usage->instances = 1;
    }
}

Element* TypeModel::makeTable(ChildElement& usage, const CString& tableName)
{
    void* place = memory.allocate(sizeof(Element), alignof(Element));
    Element* table = own(new (place) Element(*usage.element, &memory));
    table->setName(tableName);
    table->describeByName();
    table->type = Element::typeTable;
    table->addChild(usage.element);
    table->addParent(usage.parent);
    elements.store(table);
    if (usage.parent)
        usage.parent->toTable(usage.element, table);
    return table;
}
