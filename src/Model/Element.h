#pragma once

#include "Base/Fingerprint.h"

#include <cstdint>
#include <memory>
#include <memory_resource>

class Element;

/// Elements in the order in which they were added, each at most once. Owns none of them, and lies in memory that is
/// only given back as a whole.
class ElementList
{
public:
    /// Appends `element`, with room from `memory`. False, and no change, when it is already listed.
    bool add(Element* element, std::pmr::memory_resource& memory);

    /// Appends an element that is known not to be listed, which spares the search.
    void append(Element* element, std::pmr::memory_resource& memory);

    /// Puts `replacement` where `old` stands; does nothing when `old` is not listed.
    void replace(Element* old, Element* replacement);

    std::size_t size() const { return count; }
    Element* operator[](std::size_t at) const { return items[at]; }
    Element** begin() const { return items; }
    Element** end() const { return items + count; }

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

    // Room for `capacity` elements; in a list too long to walk, behind them a hash table of positions, and how many of
    // its slots are taken, by items or by what was replaced. An import has two lists an element, most of them short.
    Element** items = nullptr;
    std::uint32_t count = 0;
    std::uint32_t capacity : 31 = 0;
    std::uint32_t isIndexed : 1 = 0;
};

/// One node of an imported message: a type of its own (a record, table, enumeration or array) or a field. Importers
/// make elements only through TypeModel, which owns them all.
class alignas(64) Element
{
public:
    /// A text that many elements have in common.
    using SharedText = std::shared_ptr<const CString>;

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

    const CString& queryPath() const { return *path; }
    const CString& queryName() const { return name; }
    const CString& queryDescription() const;
    const CString& queryBaseName() const { return hasBaseName ? more->baseName : name; }
    const CString& queryKnownType() const;
    bool hasKnownType() const { return isKnown; }
    const CString& querySize() const;
    ElementTypes queryType() const { return type; }
    int queryIsAttribute() const { return isAttribute; }
    const ElementList& queryChildren() const { return children; }
    const ElementList& queryParents() const { return parents; }

    void setType(ElementTypes newType) { type = newType; }
    void setSize(const CString& newSize) { rare().size = newSize; }
    void setKnownType(std::string_view newKnownType);
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

    /// What the document of `record` says of this child as its field. Description and type may lie in `room`.
    const CString& queryFieldName() const { return type == typeTable ? queryBaseName() : name; }
    std::string_view queryFieldDescription(CString& room) const;
    std::string_view queryFieldType(const Element& record, CString& room) const;

    /// The type that a table or an array holds, as its document names it.
    CString queryComponentType() const;

    /// The mark of the ordering pass: whether the element stands in its model's list.
    bool isPlaced() const { return placed; }
    void setPlaced(bool isPlaced) { placed = isPlaced; }

    /// Which of its model's elements this is, from 0; kNoNumber for one that stands in no model.
    std::uint32_t queryNumber() const { return number; }
    void setNumber(std::uint32_t newNumber) { number = newNumber; }
    static constexpr std::uint32_t kNoNumber = 0xFFFFFFFF;

    /// True for the kinds that are written as documents of their own, 0 to 3.
    bool isTypeOfItsOwn() const { return type >= typeEnum && type <= typeTable; }

private:
    friend class TypeModel;

    // For TypeModel, which gives all elements of one folder the same path, and has memory for their lists.
    // Null memory: the element has its own.
    Element(SharedText path, std::string_view name, ElementTypes type, std::pmr::memory_resource* memory);
    Element(const Element& other, std::pmr::memory_resource* memory);

    // What most elements don't have.
    struct Rare
    {
        CString baseName;
        CString description; // "" also for a generated one that nobody has asked for
        CString knownType;
        CString size;
    };

    Rare& rare() const; // made when it isn't there
    int appendChild(Element* child);
    void link(Element* child); // both ways
    int isPrimitive() const { return type == typeString || type == typeNumber || type == typeDate; }
    void setPrimitiveType();
    void setName(const CString& newName);
    void setDescription(const CString& newDescription);
    void describeByName();

    // An import has very many elements. So what most of them don't have costs a pointer, the description that nearly
    // all of them have, the generated one of their name, is made when it is asked for, and what every pass looks at
    // stands in the first cache line.
    ElementTypes type;
    std::uint32_t number = kNoNumber;
    std::uint8_t isAttribute = 0;
    bool placed = false;
    bool isDescribedByName = false; // by the generated description
    bool isLinkedByHand = false;    // has got a parent or a child that need not have got it too
    bool isKnown = false;           // has a known type
    bool hasBaseName = false;       // of its own: else it is the name
    bool ownsMemory = false;

    ElementList children;
    ElementList parents;
    mutable Rare* more = nullptr; // in `memory`
    CString name;
    SharedText path;                   // ends with a backslash
    std::pmr::memory_resource* memory; // of the lists
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

    void addInstance() { ++instances; }

    Fingerprint usageKey; // the key itself may be as long as the source
    Element* element;
    Element* parent;
    unsigned int instances = 1;
};
