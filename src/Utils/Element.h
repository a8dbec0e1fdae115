#pragma once

#include "Platform/Text.h"

#include <cstdint>
#include <memory>
#include <unordered_set>
#include <vector>

class BrokerTypeDescription;
class Element;

/// Elements in the order in which they were added, each at most once. Owns none of them.
class ElementList
{
public:
    /// False, and no change, when `element` is already listed.
    bool add(Element* element);

    /// Appends an element that is known not to be listed.
    void addNew(Element* element);

    /// Puts `replacement` where `old` stands; does nothing when `old` is not listed.
    void replace(Element* old, Element* replacement);

    bool contains(Element* element) const;
    std::size_t size() const { return items.size(); }
    Element* operator[](std::size_t at) const { return items[at]; }
    auto begin() const { return items.begin(); }
    auto end() const { return items.end(); }

private:
    std::vector<Element*> items;
    std::unique_ptr<std::unordered_set<Element*>> index; // made when a walk over `items` would get long
};

/// One node of an imported message: a type of its own (a record, table, enumeration or array) or a field. Importers
/// make elements only through MsgBase, which owns them all.
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
    Element& operator=(const Element&) = delete;

    const CString& queryPath() const { return path; }
    const CString& queryName() const { return name; }
    const CString& queryDescription() const { return description; }
    const CString& queryBaseName() const { return baseName; }
    const CString& queryKnownType() const { return knownType; }
    const CString& querySize() const { return size; }
    ElementTypes queryType() const { return type; }
    int queryIsAttribute() const { return isAttribute; }
    const ElementList& queryChildren() const { return children; }
    const ElementList& queryParents() const { return parents; }

    void setType(ElementTypes newType) { type = newType; }
    void setSize(const CString& newSize) { size = newSize; }
    void setKnownType(const CString& newKnownType) { knownType = newKnownType; }
    void asAttribute() { isAttribute = 1; }

    /// Does nothing for null or for a parent that is already listed.
    void addParent(Element* parent);

    /// 0 when `child` is already listed. Otherwise appends it, which makes a primitive element a record, and answers 1.
    int addChild(Element* child);

    /// Puts `table` in the place of `oldChild`; does nothing when that is no child.
    void toTable(Element* oldChild, Element* table);

    /// Replaces `out` with the type as one BROKERTYPEDESCRIPTION document. An array without a size gets the size "5".
    void asXML(CString& out);

    /// True for the kinds that are written as documents of their own, 0 to 3.
    bool isTypeOfItsOwn() const { return type >= typeEnum && type <= typeTable; }

private:
    friend class MsgBase;

    int isPrimitive() const { return type == typeString || type == typeNumber || type == typeDate; }
    void setPrimitiveType();
    CString componentType() const;
    void addFieldTo(BrokerTypeDescription& builder, const Element& child) const;

    CString path;
    CString name;
    CString description;
    CString baseName;
    CString knownType;
    ElementTypes type;
    int isAttribute = 0;
    ElementList children;
    ElementList parents;
    int placed = 0;
    CString size;

    // Where the ordering pass stands at this element: all parents before the first index and all children before the
    // second are placed; `climb` is the last climb that came by.
    std::uint32_t nextParent = 0;
    std::uint32_t nextChild = 0;
    std::uint32_t climb = 0;
};

/// One usage of an element under a parent, and how often it occurred.
class ChildElement
{
public:
    ChildElement(const CString& usageKey, Element* element, Element* parent);

    const CString& queryUsageKey() const { return usageKey; }
    Element* queryElement() const { return element; }
    Element* queryParent() const { return parent; }
    unsigned int queryInstances() const { return instances; }

private:
    friend class MsgBase;

    void addInstance() { ++instances; }

    CString usageKey;
    Element* element;
    Element* parent;
    unsigned int instances = 1;
};
