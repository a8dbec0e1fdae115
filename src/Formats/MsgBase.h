#pragma once

#include "Formats/MsgUIDescriptor.h"
#include "Platform/Arena.h"
#include "Platform/Text.h"
#include "Utils/Element.h"
#include "Utils/KeyedTable.h"

#include <deque>
#include <functional>
#include <memory_resource>
#include <vector>

/// The base of every importer and the container of one import. An importer implements parse() and declares in it what
/// it finds, by addElement() and addAttribute(); afterwards usages that occurred more than once become tables, and the
/// types can be enumerated, component types before the types that use them.
class MsgBase
{
public:
    /// 1 merges by name: a name seen twice is one element. 0: every addElement() makes a new one.
    explicit MsgBase(int mergeByName);
    virtual ~MsgBase();
    MsgBase(const MsgBase&) = delete;
    MsgBase& operator=(const MsgBase&) = delete;

    /// Declares the elements of a source. `source` is the file's contents, or its name when isFileMode() is nonzero, or
    /// the text given to parseData(); `basePath` the folder under which the types are placed; `fileName` the file's
    /// name, "" for parseData(). Nonzero on success; a failure has been shown by the importer itself.
    virtual int parse(const CString& source, const CString& basePath, const CString& fileName) = 0;

    /// Nonzero when parse() wants the file's name rather than its contents.
    virtual int isFileMode() const { return 0; }

    /// The name of the root element of the document that getXML() writes.
    virtual CString queryMainTypeName() const = 0;

    virtual MsgUIDescriptor* queryDescriptor() const = 0;

    /// Clears the model and imports a file. 0 when it can't be opened (message 2210), else what parse() answered.
    int parseFile(const CString& fileName, const CString& basePath);

    /// Clears the model and imports `data`; answers what parse() answered.
    int parseData(const CString& data, const CString& basePath);

    /// Replaces `out` with the message document: header, main element, the documents of all types.
    void getXML(CString& out);

    /// The message document in pieces, in order, so that it never has to be in memory whole.
    void writeXML(const std::function<void(std::string_view)>& write);

    /// Puts the cursor before the first type and answers how many types there are.
    int beginEnum();

    /// The next type, or null at the end and from then on.
    Element* enumNext();

    /// Declares one occurrence of an element under `parent` (null at the top) and returns the element. A usage key that
    /// occurs again says that the element repeats inside its parent.
    Element* addElement(const CString& usageKey, const CString& path, const CString& name, const CString& description,
                        Element::ElementTypes type, Element* parent);

    /// The same for an attribute of `parent`, which must not be null: the element's name is the parent's name, "_" and
    /// `name`, and it never becomes a table.
    Element* addAttribute(const CString& usageKey, const CString& path, const CString& name, const CString& description,
                          Element::ElementTypes type, Element* parent);

    long queryNextPage() const { return queryDescriptor()->queryNextPage(); }
    CString& getBasePath() { return queryDescriptor()->getBasePath(); }

protected:
    /// addElement() for keys that grow from each other.
    Element* addElement(const Fingerprint& usageKey, const CString& path, const CString& name,
                        const CString& description, Element::ElementTypes type, Element* parent);

    /// The same with the generated description of the name, without making its text.
    Element* addElement(const Fingerprint& usageKey, const CString& path, const CString& name,
                        Element::ElementTypes type, Element* parent);

    /// Declares one more occurrence of an element that addElement() has returned before: what addElement() does with
    /// the same name, without looking the name up.
    void addUsage(const Fingerprint& usageKey, Element* element, Element* parent);

    /// Makes room for so many usages at once.
    void reserveUsages(std::size_t count) { usages.reserve(count); }

    /// Empties the model.
    void clear();

    /// Makes tables of repeated usages and orders the types.
    void onAfterParse();

    /// Null when nothing merges by name, for an empty name, and for a name that there is not.
    Element* findElement(const CString& name) const;

    /// Null for an empty key and for one that there is not.
    ChildElement* findUsage(const Fingerprint& usageKey) const;

    /// Places an element: its ancestors before it, then the element, then its descendants; each once. Where parents
    /// form a cycle, a parent from which the climb in hand has already come is passed over.
    void orderList(Element* element);

    /// Puts an element at the head of the ordered list, or at its tail when one of its children's known types names a
    /// type that is already listed.
    void addToOrderedList(Element* element);

    /// Shows `text` under the title "Typeforge Error" and answers 0, the result of an import that failed.
    static int fail(const CString& text);

private:
    // One element that is being placed, with the climb that it belongs to.
    struct Placing
    {
        Element* element;
        std::uint32_t climb;
        std::uint32_t nextParent;
        bool parentsDone;
    };

    std::pair<Element*, bool> findOrMake(const CString& path, const CString& name, Element::ElementTypes type);
    Element* newElement(const CString& path, const CString& name, Element::ElementTypes type);
    Element* own(Element* element);
    void deleteElements();
    void beginPlacing(Element* element, std::uint32_t climb);
    Element* nextParentToPlace(Placing& placing);
    Element* nextChildToPlace(Element& element);
    std::uint32_t newClimb();
    std::uint32_t climbOf(const Placing& placing) const;
    void place(Element& element);
    bool isListed(std::string_view name);
    void makeTables();
    Element* makeTable(ChildElement& usage, const CString& tableName);

    // Elements, usages and their texts and lists lie in memory that is only given back as a whole, on clear().
    Arena memory;
    std::vector<Element*> ownedElements; // also the ones that another has replaced under their key
    Element::SharedText lastPath;        // nearly always the next element's too
    KeyedTable<Element, &Element::queryName> elements;
    KeyedTable<ChildElement, &ChildElement::queryUsageKey, Fingerprint> usages;
    std::deque<Element*> orderedList;
    std::size_t enumPosition = kNoPosition;
    int mergeByName;
    int typeCount = 0;

    std::vector<Placing> placings; // a stack on the heap: chains of parents and children may be as long as the input
    KeyedTable<Element, &Element::queryName> listedNames; // the names in orderedList, filled once somebody asks
    bool namesAreListed = false;
    std::uint32_t lastClimb = 0;
    std::size_t climbsLeft = 0; // steps that may still be spent on climbs of their own, see newClimb()

    static constexpr std::size_t kNoPosition = static_cast<std::size_t>(-1);
    static constexpr std::size_t kAhead = 8; // how far ahead a walk over all elements asks for their memory
};
