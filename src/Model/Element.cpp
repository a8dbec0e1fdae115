#include "Model/Element.h"

namespace {

const CString kEmpty;

// Returns the path of an element without a model, in a new pool, which the element owns and reaches through its path.
Name& pathInOwnPool(std::string_view path)
{
    return (new NamePool)->intern(path.ends_with('\\') ? path : CString(path) + '\\');
}

} // namespace

Element::Element(const CString& path, const CString& name, const CString& description, ElementTypes type,
                 Element* parent) :
    type(type),
    ownsNames(true), path(&pathInOwnPool(path))
{
    // Not an initializer, because the pool is reached through the path.
    this->name = &names().intern(name);
    setDescription(description);
    addParent(parent);
}

Element::Element(const Element& other, Name& path, Name& name) :
    type(other.type), isAttribute(other.isAttribute), placed(other.placed), isDescribedByName(other.isDescribedByName),
    name(&name), path(&path)
{
    setKnownType(other.queryKnownType());
    if (!other.more)
        return;
    rare();
    if (other.more->baseName)
        more->baseName = &names().intern(other.more->baseName->text);
    if (other.more->description)
        more->description = &names().intern(other.more->description->text);
}

// The name of the other element is replaced at once by one of the own pool, because an element must not refer to names
// of two pools.
Element::Element(const Element& other) : Element(other, pathInOwnPool(other.queryPath()), *other.name)
{
    ownsNames = true;
    name = &names().intern(name->text);
}

Element::~Element()
{
    if (ownsNames)
        delete &names();
}

// Const, because a generated description is stored on demand.
Element::Rare& Element::rare() const
{
    if (!more)
        more = std::pmr::polymorphic_allocator<>(&names().memory).new_object<Rare>();
    return *more;
}

const CString& Element::queryDescription() const
{
    if (CString room; isDescribedByName && !rare().description)
        more->description = &names().intern(generated(name->text).joined(room));
    return more && more->description ? more->description->text : kEmpty;
}

const CString& Element::queryKnownType() const
{
    return knownType ? knownType->text : kEmpty;
}

const CString& Element::querySize() const
{
    return more && more->size ? more->size->text : kEmpty;
}

void Element::setKnownType(std::string_view newKnownType)
{
    knownType = newKnownType.empty() ? nullptr : &names().intern(newKnownType);
}

// Renames the element. The first name stays as the base name, which a record shows as the name of a field that is a
// table.
void Element::setName(Name& newName)
{
    if (!rare().baseName)
        more->baseName = name;
    name = &newName;
}

void Element::setDescription(std::string_view newDescription)
{
    // Nearly all descriptions are generated ones, so those are only flagged, not stored. A replaced description stays
    // in memory, because names are only freed all at once.
    const auto [first, rest] = generated(name->text);
    isDescribedByName = newDescription.size() == first.size() + rest.size() && newDescription.starts_with(first) &&
                        newDescription.ends_with(rest);
    if (more)
        more->description = nullptr;
    if (!isDescribedByName && !newDescription.empty())
        rare().description = &names().intern(newDescription);
}

void Element::describeByName()
{
    if (more)
        more->description = nullptr;
    isDescribedByName = true;
}

void Element::addParent(Element* parent)
{
    isLinkedManually = true;
    if (parent)
        parents.add(parent, names().memory);
}

int Element::addChild(Element* child)
{
    isLinkedManually = true;
    return appendChild(child);
}

int Element::appendChild(Element* child)
{
    if (!children.add(child, names().memory))
        return 0;
    if (isPrimitive())
        type = typeRow;
    return 1;
}

// A common field has very many parents, and searching them would be slow. While all links of both elements go both
// ways, the shorter list of children tells whether the link exists.
void Element::link(Element* child, bool isNew)
{
    if (isNew && !isPrimitive())
        children.append(child, names().memory);
    else
        isNew = appendChild(child);
    if (isLinkedManually || child->isLinkedManually)
        child->parents.add(this, names().memory);
    else if (isNew)
        child->parents.append(this, names().memory);
}

void Element::toTable(Element* oldChild, Element* table)
{
    replaceChild(oldChild, table, 0);
}

void Element::replaceChild(Element* child, Element* table, std::size_t likely)
{
    isLinkedManually = true;
    children.replace(child, table, likely, names().memory);
}

// Gives a primitive element the known type of its kind, so that a table can name it as its component.
void Element::setPrimitiveType()
{
    if (!isPrimitive())
        return;
    setKnownType(queryFieldType(*this).first);
}
