#pragma once

#include "Model/ElementList.h"
#include "Model/NamePool.h"

/// One node of an imported message: a type (a record, table, enumeration or array) or a field. Importers create
/// elements only through TypeModel, which owns them all.
class Element
{
public:
    enum ElementTypes : int
    {
        typeEnum = 0,   ///< its children are the constants
        typeArray = 1,  ///< fixed size, see setSize()
        typeRow = 2,    ///< a record; its children are the fields
        typeTable = 3,  ///< a repeated component
        typeString = 4, ///< text field
        typeNumber = 5, ///< number field
        typeDate = 6,   ///< date and time field
        typeOther = 7   ///< field of the type that the known type names
    };

    /// `path` gets a final backslash if it has none; `parent` may be null.
    Element(const CString& path, const CString& name, const CString& description, ElementTypes type, Element* parent);

    /// Copies the element without its children, parents and size.
    Element(const Element& other);
    ~Element();
    Element& operator=(const Element&) = delete;

    /// Return the element's properties. Texts are empty if not set; the path ends with a backslash. The base name is
    /// the name before the element became a table.
    const CString& queryPath() const { return path->text; }
    const CString& queryName() const { return name->text; }
    const CString& queryDescription() const;

    /// Returns the description without storing a generated one: name and suffix as two views, valid as long as the
    /// model.
    TextPieces queryDescriptionPieces() const;
    const CString& queryBaseName() const { return baseName().text; }
    const CString& queryKnownType() const;
    bool hasKnownType() const { return knownType != nullptr; }
    const CString& querySize() const;

    /// Returns the size that the document of an array states: its own, or the default if it has none.
    std::string_view sizeInDocument() const { return querySize().empty() ? "5" : std::string_view(querySize()); }
    ElementTypes queryType() const { return type; }
    int queryIsAttribute() const { return isAttribute; }
    const ElementList& queryChildren() const { return children; }
    const ElementList& queryParents() const { return parents; }

    /// Set a property. setType() changes nothing else, so the caller must make children and known type fit the kind.
    /// Texts become names of the pool; "" removes a text.
    void setType(ElementTypes newType) { type = newType; }
    void setSize(const CString& newSize) { rare().size = &names().intern(newSize); }
    void setKnownType(std::string_view newKnownType);

    /// Does the same with a name of the element's model, without a search. An empty one removes the known type.
    void setKnownType(Name& newKnownType) { knownType = newKnownType.text.empty() ? nullptr : &newKnownType; }

    /// Returns the known type as a name of the element's model, or null.
    Name* queryKnownName() const { return knownType; }
    void setDescription(std::string_view newDescription);
    /// Marks the element as an attribute, which never becomes a table.
    void asAttribute() { isAttribute = 1; }

    /// Adds a parent. Does nothing for null and for a listed parent. Doesn't add a child to the parent.
    void addParent(Element* parent);

    /// Appends `child` and returns 1; a primitive element becomes a record. Returns 0 if `child` is already listed.
    /// Doesn't add a parent to the child.
    int addChild(Element* child);

    /// Puts `table` in the place of `oldChild`. Does nothing if that is not a child.
    void toTable(Element* oldChild, Element* table);

    /// Replaces `out` with the type's BROKERTYPEDESCRIPTION document. An array without a size gets the size "5", and
    /// keeps it.
    void asXML(CString& out) { out = asXML(); }

    /// Returns the same as a view, valid until the next call for any element. Only one thread at a time may call it.
    std::string_view asXML();

    /// Returns whether a record's document has a field for this child. Enumerations and arrays have none: a field of
    /// such a type is a separate element, typeOther with a known type.
    bool isField() const { return type != typeEnum && type != typeArray; }

    /// Return the name, the description and the type that the document of `record` has for this child as a field. Texts
    /// are views of names, valid as long as the model.
    const CString& queryFieldName() const { return type == typeTable ? queryBaseName() : queryName(); }
    TextPieces queryFieldDescription() const;
    TextPieces queryFieldType(const Element& record) const;

    /// Returns the component type of a table or an array, as its document names it: the known type, else the path and
    /// the base name. The views are valid as long as the model.
    TextPieces queryComponentType() const;

    /// Returns whether the ordering has put the element into its model's list.
    bool isPlaced() const { return placed; }
    void setPlaced(bool isPlaced) { placed = isPlaced; }

    /// Marks the element's name as listed or not, for all elements of that name.
    void setListed(bool isListed) { name->isListed = isListed; }

    /// Returns the element's number in its model, from 0, in the order of creation; kNoNumber if it is in none.
    std::uint32_t queryNumber() const { return number; }
    void setNumber(std::uint32_t newNumber) { number = newNumber; }
    static constexpr std::uint32_t kNoNumber = 0xFFFFFFFF;

    /// Returns whether the element is a type with a document of its own: kinds 0 to 3. Lists of a model's types leave
    /// out all other elements.
    bool hasOwnDocument() const { return type >= typeEnum && type <= typeTable; }

private:
    friend class TypeModel;
    friend class UsageTable;

    // For TypeModel, which interns names and allocates in its own arena.
    Element(Name& path, Name& name, ElementTypes type) : type(type), name(&name), path(&path) {}
    Element(const Element& other, Name& path, Name& name);

    // Data that most elements lack. Null if not set. A generated description is only built on demand.
    struct Rare
    {
        const Name* baseName = nullptr;
        const Name* description = nullptr;
        const Name* size = nullptr;
    };

    NamePool& names() const { return path->pool; }
    const Name& baseName() const { return more && more->baseName ? *more->baseName : *name; }
    Rare& rare() const; // created on first use
    int appendChild(Element* child);
    void replaceChild(Element* child, Element* table, std::size_t likely);
    void link(Element* child, bool isNew); // in both directions; a new child has no links yet
    int isPrimitive() const { return type == typeString || type == typeNumber || type == typeDate; }
    void setPrimitiveType();
    static TextPieces generated(std::string_view name);
    void setName(Name& newName);
    void describeByName();

    // An import has very many elements, so each is small: texts are names of the pool, and rare data costs one pointer.
    // No member needs a destructor, unless the element owns its pool: the arena that holds the elements of a model runs
    // none.
    ElementTypes type : 8;
    bool isAttribute : 1 = false;
    bool placed : 1 = false;
    bool isDescribedByName : 1 = false; // has the generated description
    bool isLinkedManually : 1 = false;  // may have a link that only goes one way
    bool ownsNames : 1 = false;
    std::uint32_t number = kNoNumber;
    Name* name;
    Name* path; // ends with a backslash
    Name* knownType = nullptr;
    ElementList children;
    ElementList parents;
    mutable Rare* more = nullptr;
};

/// One usage of an element under a parent, and its number of occurrences. Its key is in UsageTable. When a repeated
/// element becomes a table, the usage becomes one of the table.
class ChildElement
{
public:
    ChildElement(Element* element, Element* parent) : element(element), parent(parent) {}

    /// Return the element, the parent (null for a top-level element), and the number of occurrences.
    Element* queryElement() const { return element; }
    Element* queryParent() const { return parent; }
    unsigned int queryInstances() const { return instances; }

private:
    friend class TypeModel;
    friend class UsageTable;

    void addInstance() { ++instances; }

    Element* element;
    Element* parent;
    unsigned int instances = 1;
    bool hasKey = false;
};
