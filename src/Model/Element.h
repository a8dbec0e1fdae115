#pragma once

#include "Model/NamePool.h"

/// Elements in the order in which they were added, each at most once. Owns none of them, and lies in memory that is
/// only given back as a whole. Most elements have one parent, which takes no memory beside the list itself.
class ElementList
{
public:
    /// Appends `element`, with room from `memory`. False, and no change, when it is already listed.
    bool add(Element* element, std::pmr::memory_resource& memory);

    /// Appends an element that is known not to be listed, which spares the search.
    void append(Element* element, std::pmr::memory_resource& memory);

    /// Makes room for `size` elements at once, if the list is empty.
    void reserve(std::uint32_t size, std::pmr::memory_resource& memory);

    /// Puts `replacement` where `old` stands; does nothing when `old` is not listed.
    void replace(Element* old, Element* replacement);

    std::size_t size() const { return count; }
    Element* operator[](std::size_t at) const { return begin()[at]; }
    Element* const* begin() const { return capacity == 0 ? &single : items; }
    Element* const* end() const { return begin() + count; }

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    std::uint32_t positionOf(const Element* element) const;
    void moveTo(std::uint32_t newCapacity, bool withIndex, std::pmr::memory_resource& memory);
    void buildIndex();
    void enter(std::uint32_t position);
    std::size_t slotCount() const { return 4 * std::size_t{capacity}; }
    std::uint32_t* index() const { return reinterpret_cast<std::uint32_t*>(items + capacity); }
    std::uint32_t& entered() const { return index()[slotCount()]; }
    std::size_t firstSlot(const Element* element) const;

    // Room for `capacity` elements, or in the list itself for one; in a list too long to walk, behind them a hash table
    // of positions, and how many of its slots are taken, by items or by what was replaced.
    union {
        Element* single = nullptr;
        Element** items;
    };
    std::uint32_t count = 0;
    std::uint32_t capacity : 31 = 0;
    std::uint32_t isIndexed : 1 = 0;
};

/// One node of an imported message: a type of its own (a record, table, enumeration or array) or a field. Importers
/// make elements only through TypeModel, which owns them all.
class Element
{
public:
    enum ElementTypes : int
    {
        typeEnum = 0,   ///< its children are its constants
        typeArray = 1,  ///< fixed size, see setSize()
        typeRow = 2,    ///< a record; its children are its fields
        typeTable = 3,  ///< a repeated component
        typeString = 4, ///< text field
        typeNumber = 5, ///< number field
        typeDate = 6,   ///< date and time field
        typeOther = 7   ///< field whose type is named by the known type
    };

    /// `path` gets a final backslash where it lacks one; `parent` may be null.
    Element(const CString& path, const CString& name, const CString& description, ElementTypes type, Element* parent);

    /// Copies what the element says of itself; children, parents and size start empty.
    Element(const Element& other);
    ~Element();
    Element& operator=(const Element&) = delete;

    const CString& queryPath() const { return path->text; }
    const CString& queryName() const { return name->text; }
    const CString& queryDescription() const;

    /// The same without keeping a generated one.
    TextPieces queryDescriptionPieces() const;
    const CString& queryBaseName() const { return baseName().text; }
    const CString& queryKnownType() const;
    bool hasKnownType() const { return knownType != nullptr; }
    const CString& querySize() const;
    ElementTypes queryType() const { return type; }
    int queryIsAttribute() const { return isAttribute; }
    const ElementList& queryChildren() const { return children; }
    const ElementList& queryParents() const { return parents; }

    void setType(ElementTypes newType) { type = newType; }
    void setSize(const CString& newSize) { rare().size = &names().intern(newSize); }
    void setKnownType(std::string_view newKnownType);

    /// The same for a name of the element's model, which spares the search.
    void setKnownType(Name& newKnownType) { knownType = newKnownType.text.empty() ? nullptr : &newKnownType; }

    /// The known type as a name of the element's model, or null.
    Name* queryKnownName() const { return knownType; }
    void setDescription(std::string_view newDescription);
    void asAttribute() { isAttribute = 1; }

    /// Does nothing for null or for a parent that is already listed.
    void addParent(Element* parent);

    /// 0 when `child` is already listed. Otherwise appends it, which makes a primitive element a record, and answers 1.
    int addChild(Element* child);

    /// Puts `table` in the place of `oldChild`; does nothing when that is no child.
    void toTable(Element* oldChild, Element* table);

    /// Replaces `out` with the type as one BROKERTYPEDESCRIPTION document. An array without a size gets the size "5".
    void asXML(CString& out) { out = asXML(); }

    /// The same without a copy; the next document of any element takes its place.
    std::string_view asXML();

    /// False for the children of a record that its document has no field for: enumerations and arrays.
    bool isField() const { return type != typeEnum && type != typeArray; }

    /// What the document of `record` says of this child as its field.
    const CString& queryFieldName() const { return type == typeTable ? queryBaseName() : queryName(); }
    TextPieces queryFieldDescription() const;
    TextPieces queryFieldType(const Element& record) const;

    /// The type that a table or an array holds, as its document names it.
    TextPieces queryComponentType() const;

    /// The mark of the ordering pass: whether the element stands in its model's list.
    bool isPlaced() const { return placed; }
    void setPlaced(bool isPlaced) { placed = isPlaced; }

    /// Marks the element's name as one of the listed ones, or no more.
    void setListed(bool isListed) { name->isListed = isListed; }

    /// Which of its model's elements this is, from 0; kNoNumber for one that stands in no model.
    std::uint32_t queryNumber() const { return number; }
    void setNumber(std::uint32_t newNumber) { number = newNumber; }
    static constexpr std::uint32_t kNoNumber = 0xFFFFFFFF;

    /// True for the kinds that are written as documents of their own, 0 to 3.
    bool isTypeOfItsOwn() const { return type >= typeEnum && type <= typeTable; }

private:
    friend class TypeModel;
    friend class UsageTable;

    // For TypeModel, which has the names and the memory for the lists.
    Element(Name& path, Name& name, ElementTypes type) : type(type), name(&name), path(&path) {}
    Element(const Element& other, Name& path, Name& name);

    // What most elements don't have. Null: not set; a generated description is only made when it is asked for.
    struct Rare
    {
        const Name* baseName = nullptr;
        const Name* description = nullptr;
        const Name* size = nullptr;
    };

    NamePool& names() const { return path->pool; }
    const Name& baseName() const { return more && more->baseName ? *more->baseName : *name; }
    Rare& rare() const; // made when it isn't there
    int appendChild(Element* child);
    void link(Element* child, bool isNew); // both ways; a new child has no links
    int isPrimitive() const { return type == typeString || type == typeNumber || type == typeDate; }
    void setPrimitiveType();
    void setName(Name& newName);
    void describeByName();

    // A row of the model, of which an import has very many: so texts are names of the pool, and what few elements have
    // costs a pointer. Nothing in it needs a destructor, unless the element stands alone.
    ElementTypes type : 8;
    bool isAttribute : 1 = false;
    bool placed : 1 = false;
    bool isDescribedByName : 1 = false; // by the generated description
    bool isLinkedByHand : 1 = false;    // has got a parent or a child that need not have got it too
    bool ownsNames : 1 = false;
    std::uint32_t number = kNoNumber;
    Name* name;
    Name* path; // ends with a backslash
    Name* knownType = nullptr;
    ElementList children;
    ElementList parents;
    mutable Rare* more = nullptr;
};

/// Asks for the memory of elements that a loop is about to look at: they lie anywhere, and so wait only once.
inline void prefetch(const ElementList& elements)
{
    for (std::size_t i = 0; i < elements.size() && i < 16; ++i)
        __builtin_prefetch(elements[i]);
}

/// One usage of an element under a parent, and how often it occurred.
class ChildElement
{
public:
    ChildElement(const Fingerprint& usageKey, Element* element, Element* parent) :
        usageKey(usageKey), element(element), parent(parent)
    {}

    const Fingerprint& queryUsageKey() const { return usageKey; }
    Element* queryElement() const { return element; }
    Element* queryParent() const { return parent; }
    unsigned int queryInstances() const { return instances; }

private:
    friend class TypeModel;
    friend class UsageTable;

    void addInstance() { ++instances; }

    Fingerprint usageKey; // the key itself may be as long as the source; empty as long as it isn't needed
    Element* element;
    Element* parent;
    unsigned int instances = 1;
};
