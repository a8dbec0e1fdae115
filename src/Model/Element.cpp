#include "Model/Element.h"

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

std::pmr::memory_resource* orOwn(std::pmr::memory_resource* memory)
{
    return memory ? memory : new std::pmr::monotonic_buffer_resource;
}

} // namespace

Element::Element(SharedText path, std::string_view name, ElementTypes type, std::pmr::memory_resource* memory) :
    type(type), ownsMemory(!memory), name(name), path(std::move(path)), memory(orOwn(memory))
{}

Element::Element(const CString& path, const CString& name, const CString& description, ElementTypes type,
                 Element* parent) :
    Element(std::make_shared<const CString>(path.ends_with('\\') ? path : path + '\\'), name, type, nullptr)
{
    setDescription(description);
    addParent(parent);
}

Element::Element(const Element& other, std::pmr::memory_resource* memory) :
    Element(other.path, other.name, other.type, memory)
{
    isAttribute = other.isAttribute;
    placed = other.placed;
    isDescribedByName = other.isDescribedByName;
    isKnown = other.isKnown;
    hasBaseName = other.hasBaseName;
    if (other.more)
        rare() = {other.more->baseName, other.more->description, other.more->knownType, {}};
}

Element::Element(const Element& other) : Element(other, nullptr) {}

Element::~Element()
{
    if (more)
        std::destroy_at(more);
    if (ownsMemory)
        delete memory;
}

Element::Rare& Element::rare() const
{
    if (!more)
        more = std::pmr::polymorphic_allocator<>(memory).new_object<Rare>();
    return *more;
}

const CString& Element::queryDescription() const
{
    if (isDescribedByName && rare().description.empty())
        rare().description = fillText(loadText(IDS_AUTOMATIC), name);
    return more ? more->description : kEmpty;
}

const CString& Element::queryKnownType() const
{
    return more ? more->knownType : kEmpty;
}

const CString& Element::querySize() const
{
    return more ? more->size : kEmpty;
}

void Element::setKnownType(std::string_view newKnownType)
{
    isKnown = !newKnownType.empty();
    if (isKnown || more)
        rare().knownType = newKnownType;
}

void Element::setName(const CString& newName)
{
    if (!hasBaseName)
        rare().baseName = name;
    hasBaseName = true;
    name = newName;
}

void Element::setDescription(const CString& newDescription)
{
    isDescribedByName = isGenerated(newDescription, name);
    if (more)
        more->description.clear();
    if (!isDescribedByName && !newDescription.empty())
        rare().description = newDescription;
}

void Element::describeByName()
{
    if (more)
        more->description.clear();
    isDescribedByName = true;
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
