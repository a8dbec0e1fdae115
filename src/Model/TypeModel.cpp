#include "Model/TypeModel.h"

#include "Model/TypeOrder.h"

// Names come last, because all else refers to their memory. The order only forgets its elements, which are freed with
// it.
void TypeModel::clear()
{
    usages.clear();
    order.forget();
    ownedElements.clear();
    names.clear();
}

Element* TypeModel::findElement(std::string_view name) const
{
    const Name* const known = mergesByName && !name.empty() ? names.find(name) : nullptr;
    return known ? known->element : nullptr;
}

TypeModel::Declared TypeModel::addElement(const Fingerprint& usageKey, const CString& path, std::string_view name,
                                          std::string_view description, Element::ElementTypes type, Element* parent)
{
    const Declared made = findOrMake(pathNamed(path), names.intern(name), type);
    if (made.isFirst)
        made.element->setDescription(description);
    return count(usages.declare(usageKey, made.element, parent), made, parent);
}

TypeModel::Declared TypeModel::addElement(const Fingerprint& usageKey, const CString& path, std::string_view name,
                                          Element::ElementTypes type, Element* parent)
{
    const Declared made = findOrMake(pathNamed(path), names.intern(name), type);
    return count(usages.declare(usageKey, made.element, parent), made, parent);
}

TypeModel::Declared TypeModel::addUsage(const Fingerprint& usageKey, Element* element, Element* parent)
{
    return count(usages.declare(usageKey, element, parent), {element, false}, parent);
}

TypeModel::Declared TypeModel::addRecord(const CString& path, std::string_view name, bool isAlone)
{
    const Declared made = findOrMake(pathNamed(path), names.intern(name), Element::typeRow);
    return count(usages.declareRecord(made.element, isAlone), made, nullptr);
}

// The field lies in the record's folder, so no path needs to be looked up.
TypeModel::Declared TypeModel::addField(Element* record, Name& name, Element::ElementTypes type)
{
    const Declared made = findOrMake(*record->path, name, type);
    return count(usages.declareField(made.element, record), made, record);
}

TypeModel::Declared TypeModel::addFieldUsage(Element* record, Element* field)
{
    return count(usages.declareField(field, record), {field, false}, record);
}

Element* TypeModel::addPart(Element* parent, Name& path, Name& name, Element::ElementTypes type)
{
    cancelPoint.pass();
    const Declared made = findOrMake(path, name, type);
    parent->link(made.element, made.isFirst);
    return made.element;
}

void TypeModel::reserveFields(Element* record, std::size_t count)
{
    record->children.reserve(static_cast<std::uint32_t>(count), names.memory);
}

// Links the element of a usage to its parent, unless a known usage has linked it. If the key was declared with another
// element or parent, or an importer has linked elements itself, link() checks whether the link exists.
TypeModel::Declared TypeModel::count(UsageTable::Declared usage, const Declared& made, Element* parent)
{
    cancelPoint.pass();
    const auto [known, isFirst] = usage;
    const bool hasOtherParent = known->parent != parent;
    if (parent && (isFirst || known->element != made.element || hasOtherParent || parent->isLinkedManually))
        parent->link(made.element, made.isFirst);
    const bool isOther = hasOtherParent || known->element->name != made.element->name;
    return {made.element, isFirst, isOther ? known : nullptr};
}

// Makes an element in the arena, which frees it without running the destructor. An element of a model needs none.
template <class... Parts>
Element* TypeModel::make(Parts&... parts)
{
    void* const place = names.memory.allocate(sizeof(Element), alignof(Element));
    Element* const element = new (place) Element(parts...);
    element->setNumber(static_cast<std::uint32_t>(ownedElements.size()));
    ownedElements.push_back(element);
    return element;
}

// Returns the element of a name and whether it was created, which gives it the generated description.
TypeModel::Declared TypeModel::findOrMake(Name& path, Name& name, Element::ElementTypes type)
{
    if (name.element && !name.text.empty())
        return {name.element, false};
    Element* const element = make(path, name, type);
    element->describeByName();
    store(element);
    return {element, true};
}

// Returns the name of a folder, with a final backslash.
Name& TypeModel::pathNamed(const CString& path)
{
    return path.ends_with('\\') ? names.intern(path) : names.intern(path + '\\');
}

// Makes an element the one that its name refers to, if elements merge by name. The last element without a name replaces
// the others there.
void TypeModel::store(Element* element)
{
    if (mergesByName)
        element->name->element = element;
}

// Usages are placed in the order of their declaration, which decides between types that don't refer to each other.
void TypeModel::arrange()
{
    order.clear(); // resets every placed mark
    makeTables();
    TypeOrder placing(order, ownedElements);
    for (const ChildElement& usage : usages.query())
        placing.place(*usage.element);
}

void TypeModel::place(const Element& element)
{
    TypeOrder(order, ownedElements).place(element);
}

// Whether a usage repeats is only known when all are declared. Such a usage then becomes one of the table "t_NAME",
// whose component is the element. All usages of an element share one table, but it only replaces the element in the
// first record, unless `tablesInAllParents`. If another element already has the table's name, no table is made.
void TypeModel::makeTables()
{
    CString tableName;
    const Element* parent = nullptr;
    std::size_t position = 0; // of the usage in its parent, if the fields of a parent are declared one after the other
    for (ChildElement& usage : usages.query()) {
        cancelPoint.pass();
        position = usage.parent == parent ? position + 1 : 0;
        parent = usage.parent;
        if (usage.instances <= 1 || usage.element->isAttribute)
            continue;
        Element* element = usage.element;
        tableName.assign("t_").append(element->queryBaseName());
        // A primitive component has no type to refer to, so it gets the name of its kind as the known type, which its
        // table copies.
        element->setPrimitiveType();
        Name& name = names.intern(tableName);
        Element* table = name.element;
        if (!table)
            table = makeTable(usage, name, position);
        else if (tablesInAllParents && usage.parent && table->type == Element::typeTable)
            usage.parent->replaceChild(element, table, position);
        // A climb from the component then places its table first. The usage becomes one of the table, so that another
        // arrange() leaves it alone.
        element->addParent(table);
        usage.element = table;
        usage.instances = 1;
    }
}

// Makes the table of a usage, in the folder of its element and with its known type. `position` is the likely one of the
// element in its parent.
Element* TypeModel::makeTable(ChildElement& usage, Name& tableName, std::size_t position)
{
    Element* const table = make(*usage.element, *usage.element->path, *usage.element->name);
    table->setName(tableName);
    table->describeByName();
    table->type = Element::typeTable;
    table->addChild(usage.element);
    table->addParent(usage.parent);
    store(table);
    if (usage.parent)
        usage.parent->replaceChild(usage.element, table, position);
    return table;
}
