#include "Utils/Element.h"

#include <algorithm>

namespace {

// Up to this many entries a walk over the list is quicker than an index, and most lists stay below it.
constexpr std::size_t kWalked = 16;

} // namespace

bool ElementList::add(Element* element)
{
    if (contains(element))
        return false;
    addNew(element);
    return true;
}

void ElementList::addNew(Element* element)
{
    items.push_back(element);
    if (index)
        index->insert(element);
    else if (items.size() > kWalked)
        index = std::make_unique<std::unordered_set<Element*>>(items.begin(), items.end());
}

bool ElementList::contains(Element* element) const
{
    return index ? index->contains(element) : std::find(items.begin(), items.end(), element) != items.end();
}

void ElementList::replace(Element* old, Element* replacement)
{
    const auto place = std::find(items.begin(), items.end(), old);
    if (place == items.end())
        return;
    *place = replacement;
    if (index) {
        index->erase(old);
        index->insert(replacement);
    }
}

Element::Element(const CString& path, const CString& name, const CString& description, ElementTypes type,
                 Element* parent) :
    path(path),
    name(name), description(description), baseName(name), type(type)
{
    if (!this->path.ends_with('\\'))
        this->path += '\\';
    addParent(parent);
}

Element::Element(const Element& other) :
    path(other.path), name(other.name), description(other.description), baseName(other.baseName),
    knownType(other.knownType), type(other.type), isAttribute(other.isAttribute), placed(other.placed)
{}

void Element::addParent(Element* parent)
{
    if (parent)
        parents.add(parent);
}

int Element::addChild(Element* child)
{
    if (!children.add(child))
        return 0;
    if (isPrimitive())
        type = typeRow;
    return 1;
}

void Element::toTable(Element* oldChild, Element* table)
{
    children.replace(oldChild, table);
}

void Element::setPrimitiveType()
{
    if (type == typeString)
        knownType = "String";
    else if (type == typeNumber)
        knownType = "Number";
    else if (type == typeDate)
        knownType = "Time";
}

ChildElement::ChildElement(const CString& usageKey, Element* element, Element* parent) :
    usageKey(usageKey), element(element), parent(parent)
{}
