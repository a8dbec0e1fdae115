#include "Model/TypeModel.h"

#include "Model/TypeOrder.h"

void TypeModel::clear()
{
    usages.clear();
    order.forget();
    ownedElements.clear();
    lastPath = nullptr;
    names.clear();
}

Element* TypeModel::findElement(std::string_view name) const
{
    const Name* const known = mergesByName && !name.empty() ? names.find(name) : nullptr;
    return known ? known->element : nullptr;
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
        usages.store(
            std::pmr::polymorphic_allocator<>(&names.memory).new_object<ChildElement>(usageKey, element, parent));
    }
    if (parent)
        parent->link(element);
}

std::pair<Element*, bool> TypeModel::findOrMake(const CString& path, std::string_view name, Element::ElementTypes type)
{
    Name& known = names.intern(name);
    if (known.element && !name.empty())
        return {known.element, false};
    void* const place = names.memory.allocate(sizeof(Element), alignof(Element));
    Element* const element = own(new (place) Element(pathNamed(path), known, type));
    store(element);
    return {element, true};
}

Name& TypeModel::pathNamed(const CString& path)
{
    const auto isLast = [&] { // `path` may lack the backslash that the element's has
        return std::string_view(lastPath->text).substr(0, path.size()) == path &&
               lastPath->text.size() == path.size() + !path.ends_with('\\');
    };
    if (!lastPath || !isLast())
        lastPath = &names.intern(path.ends_with('\\') ? path : path + '\\');
    return *lastPath;
}

void TypeModel::store(Element* element)
{
    if (mergesByName)
        element->name->element = element;
}

Element* TypeModel::own(Element* element)
{
    element->setNumber(static_cast<std::uint32_t>(ownedElements.size()));
    ownedElements.push_back(element);
    return element;
}

void TypeModel::arrange()
{
    order.clear(); // no other element is placed
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
        Name& name = names.intern(tableName);
        Element* table = name.element;
        if (!table)
            table = makeTable(*usage, name);
        else if (areTablesInAll && usage->parent && table->type == Element::typeTable)
            usage->parent->toTable(element, table);
        element->addParent(table);
        usage->element = table;
        usage->instances = 1;
    }
}

Element* TypeModel::makeTable(ChildElement& usage, Name& tableName)
{
    void* const place = names.memory.allocate(sizeof(Element), alignof(Element));
    Element* const table = own(new (place) Element(*usage.element, *usage.element->path, *usage.element->name));
    table->setName(tableName);
    table->describeByName();
    table->type = Element::typeTable;
    table->addChild(usage.element);
    table->addParent(usage.parent);
    store(table);
    if (usage.parent)
        usage.parent->toTable(usage.element, table);
    return table;
}
