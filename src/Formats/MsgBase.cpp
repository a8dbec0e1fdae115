#include "Formats/MsgBase.h"

#include "Formats/TypeOrder.h"
#include "Platform/Files/File.h"
#include "Platform/Progress.h"
#include "Resources/StringIds.h"
#include "Utils/FileMessage.h"
#include "Utils/QELApp.h"

namespace {

constexpr std::size_t kAhead = 8; // how far ahead a walk over all elements asks for their memory

} // namespace

MsgBase::~MsgBase()
{
    clear();
}

int MsgBase::parseFile(const CString& fileName, const CString& basePath)
{
    clear();
    CString source;
    if (!isFileMode()) {
        const FileCause cause = readFile(fileName, source);
        if (cause != FileCause::none)
            return fail(cantOpen(fileName, cause), {fileName, inWords(fileName, cause)});
    }
    return orEmpty([&] {
        const int result = parse(isFileMode() ? fileName : source, basePath, fileName);
        source = {}; // the ordering needs room of its own
        onAfterParse();
        return result;
    });
}

int MsgBase::parseData(const CString& data, const CString& basePath)
{
    clear();
    return orEmpty([&] {
        const int result = parse(data, basePath, {});
        onAfterParse();
        return result;
    });
}

template <class Import>
int MsgBase::orEmpty(Import import)
{
    try {
        return import();
    } catch (const Cancelled&) {
        onCancelled();
        clear();
        throw;
    }
}

int MsgBase::beginEnum()
{
    enumPosition = 0;
    return orderedList.typeCount();
}

Element* MsgBase::enumNext()
{
    while (enumPosition < orderedList.size()) {
        if (enumPosition + kAhead < orderedList.size())
            __builtin_prefetch(orderedList[enumPosition + kAhead]);
        Element* element = orderedList[enumPosition++];
        if (element->isTypeOfItsOwn())
            return element;
    }
    return nullptr;
}

Element* MsgBase::findElement(const CString& name) const
{
    return mergeByName && !name.empty() ? elements.find(name) : nullptr;
}

ChildElement* MsgBase::findUsage(const Fingerprint& usageKey) const
{
    return usageKey.isEmpty() ? nullptr : usages.find(usageKey);
}

Element* MsgBase::addElement(const CString& usageKey, const CString& path, const CString& name,
                             const CString& description, Element::ElementTypes type, Element* parent)
{
    return addElement(Fingerprint(usageKey), path, name, description, type, parent);
}

Element* MsgBase::addElement(const Fingerprint& usageKey, const CString& path, const CString& name,
                             const CString& description, Element::ElementTypes type, Element* parent)
{
    const auto [element, isNew] = findOrMake(path, name, type);
    if (isNew)
        element->setDescription(description);
    addUsage(usageKey, element, parent);
    return element;
}

Element* MsgBase::addElement(const Fingerprint& usageKey, const CString& path, std::string_view name,
                             Element::ElementTypes type, Element* parent)
{
    const auto [element, isNew] = findOrMake(path, name, type);
    if (isNew)
        element->describeByName();
    addUsage(usageKey, element, parent);
    return element;
}

void MsgBase::addUsage(const Fingerprint& usageKey, Element* element, Element* parent)
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

std::pair<Element*, bool> MsgBase::findOrMake(const CString& path, std::string_view name, Element::ElementTypes type)
{
    const std::uint32_t hash = keyHash(name);
    if (Element* known = mergeByName && !name.empty() ? elements.find(name, hash) : nullptr)
        return {known, false};
    Element* element = newElement(path, name, type);
    elements.store(element, hash);
    return {element, true};
}

Element* MsgBase::newElement(const CString& path, std::string_view name, Element::ElementTypes type)
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

Element* MsgBase::own(Element* element)
{
    element->setNumber(static_cast<std::uint32_t>(ownedElements.size()));
    ownedElements.push_back(element);
    return element;
}

Element* MsgBase::addAttribute(const CString& usageKey, const CString& path, const CString& name,
                               const CString& description, Element::ElementTypes type, Element* parent)
{
    Element* element = addElement(usageKey, path, parent->name + "_" + name, description, type, parent);
    element->asAttribute();
    return element;
}

void MsgBase::clear()
{
    elements.clear();
    usages.clear();
    orderedList.clear();
    report.clear();
    for (Element* element : ownedElements)
        element->~Element();
    ownedElements.clear();
    memory.release();
    enumPosition = static_cast<std::size_t>(-1);
}

void MsgBase::onAfterParse()
{
    for (std::size_t i = 0; i < orderedList.size(); ++i)
        orderedList[i]->setPlaced(false); // no other is
    orderedList.clear();
    makeTables();
    TypeOrder order(orderedList, ownedElements);
    for (const ChildElement* usage : usages)
        order.place(*usage->element);
}

void MsgBase::orderList(Element* element)
{
    TypeOrder(orderedList, ownedElements).place(*element);
}

void MsgBase::makeTables()
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

Element* MsgBase::makeTable(ChildElement& usage, const CString& tableName)
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

int MsgBase::fail(const CString& text, const SourceFault& fault)
{
    theApp.Error(text, IDS_ERROR_TITLE, fault);
    return 0;
}
