#pragma once

#include "Base/Progress.h"
#include "Model/TypeList.h"
#include "Model/UsageTable.h"

/// The elements of one import, and each of their usages: which element occurred under which parent, under a key that
/// says which occurrences are of one and the same thing, and how often. Owns all of them.
class TypeModel
{
public:
    /// What a declaration returns: the element, and whether its usage key is new.
    struct Declared
    {
        Element* element;
        bool isFirst;
    };

    /// By name: a name that is met twice is one element. Else each time it is another. `fieldPrefix` stands in front of
    /// the usage keys of fields, see UsageTable.
    explicit TypeModel(bool mergesByName, std::string_view fieldPrefix = {}) :
        usages(names, fieldPrefix), mergesByName(mergesByName)
    {}
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

    /// A record at the top, whose usage key is its name, with the generated description. One that `isAlone` has no key.
    Declared addRecord(const CString& path, std::string_view name, bool isAlone = false);

    /// A field of `record`, which is the one that was added last, in its folder and with the generated description. Its
    /// usage key is the prefix, the record's name, "." and `name`.
    Declared addField(Element* record, Name& name, Element::ElementTypes type);

    /// One more usage of a field that addField() has returned before.
    void addFieldUsage(Element* record, Element* field);

    /// What occurs once in `parent` and so needs no usage, with the generated description.
    Element* addPart(Element* parent, Name& path, Name& name, Element::ElementTypes type);
    Element* addPart(Element* parent, Name& name, Element::ElementTypes type)
    {
        return addPart(parent, *parent->path, name, type);
    }

    /// The texts of the model, for importers that use one many times.
    NamePool& queryNames() { return names; }

    /// Makes room for so many usages at once, for so many fields of a new record.
    void reserveUsages(std::size_t count) { usages.reserve(count); }
    void reserveFields(Element* record, std::size_t count);

    /// Null when nothing merges by name, for an empty name or key, and for one that there is not.
    Element* findElement(std::string_view name) const;
    ChildElement* findUsage(const Fingerprint& usageKey) { return usages.find(usageKey); }

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
    Declared findOrMake(Name& path, Name& name, Element::ElementTypes type);
    bool count(UsageTable::Declared usage, const Declared& element, Element* parent);
    Name& pathNamed(const CString& path);
    Element* makeTable(ChildElement& usage, Name& tableName);
    void store(Element* element);
    void makeTables();

    // Elements, usages and their lists lie in the memory of the names, which is only given back as a whole, on clear().
    NamePool names;
    std::vector<Element*> ownedElements; // by number; also the ones that another has replaced under their name
    Name* lastPath = nullptr;            // nearly always the next element's too
    UsageTable usages;
    TypeList order;
    bool mergesByName;
    bool areTablesInAll = false;
    CancelPoint cancelPoint{kUsagesATick};
};
