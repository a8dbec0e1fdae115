#pragma once

#include "Base/Progress.h"
#include "Model/TypeList.h"

/// The elements of one import, and each of their usages: which element occurred under which parent, under a key that
/// says which occurrences are of one and the same thing, and how often. Owns all of them.
class TypeModel
{
public:
    /// By name: a name that is met twice is one element. Else each time it is another.
    explicit TypeModel(bool mergesByName) : mergesByName(mergesByName) {}
    ~TypeModel() { clear(); }
    TypeModel(const TypeModel&) = delete;
    TypeModel& operator=(const TypeModel&) = delete;

    void clear();

    /// Adds a usage of the element of that name under `parent` (null at the top), which is made where there is none.
    Element* addElement(const Fingerprint& usageKey, const CString& path, const CString& name,
                        const CString& description, Element::ElementTypes type, Element* parent);

    /// The same with the generated description of the name, without making its text.
    Element* addElement(const Fingerprint& usageKey, const CString& path, std::string_view name,
                        Element::ElementTypes type, Element* parent);

    /// One more usage of an element that addElement() has answered before, without looking its name up.
    void addUsage(const Fingerprint& usageKey, Element* element, Element* parent);

    /// Makes room for so many usages at once.
    void reserveUsages(std::size_t count) { usages.reserve(count); }

    /// Asks the memory for the place of a usage that is about to be added.
    void prefetchUsage(const Fingerprint& usageKey) const { usages.prefetch(keyHash(usageKey)); }

    /// Null when nothing merges by name, for an empty name or key, and for one that there is not.
    Element* findElement(std::string_view name) const;
    ChildElement* findUsage(const Fingerprint& usageKey) const;

    /// A field that repeats is a table in each of its records; else in the first alone.
    void tablesInAllParents(bool inAll) { areTablesInAll = inAll; }

    /// Makes tables of usages that occurred more than once, and puts all that is used in order.
    void arrange();

    /// Places an element and all that it leads to, see TypeOrder.
    void place(const Element& element);

    /// Puts a single element where it goes in the order.
    void addToOrder(Element* element) { order.add(element); }

    const TypeList& queryOrder() const { return order; }

private:
    static constexpr unsigned kUsagesATick = 4096;

    Element* own(Element* element);
    std::pair<Element*, bool> findOrMake(const CString& path, std::string_view name, Element::ElementTypes type);
    Name& pathNamed(const CString& path);
    Element* makeTable(ChildElement& usage, Name& tableName);
    void store(Element* element);
    void makeTables();

    // Elements, usages and their lists lie in the memory of the names, which is only given back as a whole, on clear().
    NamePool names;
    std::vector<Element*> ownedElements; // by number; also the ones that another has replaced under their name
    Name* lastPath = nullptr;            // nearly always the next element's too
    KeyedTable<ChildElement, &ChildElement::queryUsageKey, Fingerprint> usages;
    TypeList order;
    bool mergesByName;
    bool areTablesInAll = false;
    CancelPoint cancelPoint{kUsagesATick};
};
