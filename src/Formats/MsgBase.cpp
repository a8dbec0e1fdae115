#include "Formats/MsgBase.h"

#include "Platform/File.h"
#include "Resources/StringTable.h"
#include "Utils/QELApp.h"

MsgBase::MsgBase(int mergeByName) : mergeByName(mergeByName) {}

MsgBase::~MsgBase() = default;

int MsgBase::parseFile(const CString& fileName, const CString& basePath)
{
    clear();
    CString source;
    if (!isFileMode()) {
        const FileCause cause = readFile(fileName, source);
        if (cause != FileCause::none)
            return fail(formatText(loadText(IDS_CANT_OPEN), fileName.c_str(), static_cast<unsigned>(cause)));
    }
    const int result = parse(isFileMode() ? fileName : source, basePath, fileName);
    source = {}; // the ordering needs room of its own
    onAfterParse();
    return result;
}

int MsgBase::parseData(const CString& data, const CString& basePath)
{
    clear();
    const int result = parse(data, basePath, {});
    onAfterParse();
    return result;
}

int MsgBase::beginEnum()
{
    enumPosition = 0;
    return typeCount;
}

Element* MsgBase::enumNext()
{
    while (enumPosition < orderedList.size()) {
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

ChildElement* MsgBase::findUsage(const CString& usageKey) const
{
    return usageKey.empty() ? nullptr : usages.find(usageKey);
}

Element* MsgBase::addElement(const CString& usageKey, const CString& path, const CString& name,
                             const CString& description, Element::ElementTypes type, Element* parent)
{
    Element* element = findElement(name);
    if (!element) {
        element = &ownedElements.emplace_back(path, name, description, type, parent);
        elements.store(element);
    }
    ChildElement* usage = findUsage(usageKey);
    if (!usage) {
        usages.store(&ownedUsages.emplace_back(usageKey, element, parent));
    } else {
        usage->addInstance();
        if (usage->element == element && usage->parent == parent)
            return element; // linked when the usage was made
    }
    if (parent) {
        element->addParent(parent);
        parent->addChild(element);
    }
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
    ownedUsages.clear();
    ownedElements.clear();
    enumPosition = kNoPosition;
    typeCount = 0;
}

int MsgBase::fail(const CString& text)
{
    theApp.Error(text, IDS_ERROR_TITLE);
    return 0;
}
