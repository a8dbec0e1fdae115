#include "Utils/Element.h"

#include "Resources/StringTable.h"

namespace {

const CString kEmpty;

// True when `description` is the generated one, "%s (Automatically created)", of `name`.
bool isGenerated(std::string_view description, std::string_view name)
{
    static const std::string_view suffix = std::string_view(loadText(IDS_AUTOMATIC)).substr(2);
    return description.size() == name.size() + suffix.size() && description.starts_with(name) &&
           description.ends_with(suffix);
}

std::unique_ptr<std::pmr::memory_resource> newMemory()
{
    return std::make_unique<std::pmr::monotonic_buffer_resource>();
}

std::unique_ptr<CString> copyOf(const std::unique_ptr<CString>& text)
{
    return text ? std::make_unique<CString>(*text) : nullptr;
}

} // namespace

Element::Element(SharedText path, const CString& name, ElementTypes type, std::pmr::memory_resource* memory) :
    type(type), name(name), path(std::move(path)), ownMemory(memory ? nullptr : newMemory()),
    memory(memory ? memory : ownMemory.get())
{}

Element::Element(const CString& path, const CString& name, const CString& description, ElementTypes type,
                 Element* parent) :
    Element(std::make_shared<const CString>(path.ends_with('\\') ? path : path + '\\'), name, type, nullptr)
{
    setDescription(description);
    addParent(parent);
}

Element::Element(const Element& other, std::pmr::memory_resource* memory) :
    type(other.type), isAttribute(other.isAttribute), placed(other.placed), isDescribedByName(other.isDescribedByName),
    isKnown(other.isKnown), name(other.name), knownType(other.knownType), path(other.path),
    baseName(copyOf(other.baseName)), description(copyOf(other.description)), ownMemory(memory ? nullptr : newMemory()),
    memory(memory ? memory : ownMemory.get())
{}

Element::Element(const Element& other) : Element(other, nullptr) {}

const CString& Element::queryDescription() const
{
    if (!description && isDescribedByName)
        description = std::make_unique<CString>(fillText(loadText(IDS_AUTOMATIC), name));
    return description ? *description : kEmpty;
}

const CString& Element::querySize() const
{
    return size ? *size : kEmpty;
}

void Element::setName(const CString& newName)
{
    if (!baseName)
        baseName = std::make_unique<CString>(name);
    name = newName;
}

void Element::setDescription(const CString& newDescription)
{
    isDescribedByName = isGenerated(newDescription, name);
    description = isDescribedByName || newDescription.empty() ? nullptr : std::make_unique<CString>(newDescription);
}

void Element::addParent(Element* parent)
{
    isLinkedByHand = true;
    if (parent)
        parents.add(parent, *memory);
}

int Element::addChild(Element* child)
{
    isLinkedByHand = true;
    return appendChild(child);
}

int Element::appendChild(Element* child)
{
    if (!children.add(child, *memory))
        return 0;
    if (isPrimitive())
        type = typeRow;
    return 1;
}

// A common field has very many parents. As long as all links of the two go both ways, the children, the shorter list,
// answer for the parents too.
void Element::link(Element* child)
{
    const bool isNew = appendChild(child);
    if (isLinkedByHand || child->isLinkedByHand)
        child->parents.add(this, *child->memory);
    else if (isNew)
        child->parents.append(this, *child->memory);
}

void Element::toTable(Element* oldChild, Element* table)
{
    isLinkedByHand = true;
    children.replace(oldChild, table);
}

void Element::setPrimitiveType()
{
    if (type == typeString)
        setKnownType("String");
    else if (type == typeNumber)
        setKnownType("Number");
    else if (type == typeDate)
        setKnownType("Time");
}
