#pragma once

#include "Base/Progress.h"
#include "Model/TypeList.h"
#include "Model/UsageTable.h"

/// The elements of one import and their usages: which element occurs under which parent, and how often. Occurrences
/// with the same usage key are the same usage. Owns the elements. Only one thread at a time may use it.
///
/// Declare all elements first, then call arrange(): whether a field repeats, and so is a table, is only known at the
/// end.
class TypeModel
{
public:
    /// The result of a declaration. The element is valid until clear().
    struct Declared
    {
        Element* element;
        bool isFirst;                             ///< the usage key is new
        const ChildElement* sharedWith = nullptr; ///< the usage with this key, if it has another name or parent
    };

    /// `mergesByName`: a repeated name is the same element. Otherwise each declaration makes a new one. `fieldPrefix`
    /// begins the usage keys of fields, see UsageTable.
    explicit TypeModel(bool mergesByName, std::string_view fieldPrefix = {}) :
        usages(names, fieldPrefix), mergesByName(mergesByName)
    {}
    ~TypeModel() { clear(); }
    TypeModel(const TypeModel&) = delete;
    TypeModel& operator=(const TypeModel&) = delete;

    /// Frees all elements and usages.
    void clear();

    /// Adds a usage of an element under `parent` (null for a top-level element). Creates the element if the name is
    /// new; path, description and type then apply. An element without a name is always new. Throws Cancelled.
    Declared addElement(const Fingerprint& usageKey, const CString& path, std::string_view name,
                        std::string_view description, Element::ElementTypes type, Element* parent);

    /// Does the same with the generated description of the name, without building its text.
    Declared addElement(const Fingerprint& usageKey, const CString& path, std::string_view name,
                        Element::ElementTypes type, Element* parent);

    /// Adds another usage of an element that addElement() returned, without looking its name up.
    Declared addUsage(const Fingerprint& usageKey, Element* element, Element* parent);

    /// Adds a top-level record, with its name as usage key and the generated description. With `isAlone` it has no key.
    Declared addRecord(const CString& path, std::string_view name, bool isAlone = false);

    /// Adds a field to `record`, which must be the last record added, in its folder and with the generated description.
    /// The usage key is the prefix, the record's name, "." and `name`.
    Declared addField(Element* record, Name& name, Element::ElementTypes type);

    /// Adds another usage of a field that addField() returned.
    Declared addFieldUsage(Element* record, Element* field);

    /// Adds an element that occurs once in `parent` and so needs no usage, with the generated description, and returns
    /// it. `parent` must have a usage, because arrange() orders what usages lead to.
    Element* addPart(Element* parent, Name& path, Name& name, Element::ElementTypes type);
    Element* addPart(Element* parent, Name& name, Element::ElementTypes type)
    {
        return addPart(parent, *parent->path, name, type);
    }

    /// Returns the names of the model, for importers that use a name many times and intern it once. The pool is valid
    /// as long as the model, its names until clear().
    NamePool& queryNames() { return names; }

    /// Makes room for `count` fields of a record that has none yet, so that its list isn't moved as it grows.
    void reserveFields(Element* record, std::size_t count);

    /// Return the element of a name, and the usage of a key: null if there is none, if the name or key is empty, and
    /// for an element also if elements don't merge by name. Valid until clear(); a usage changes when tables are made.
    Element* findElement(std::string_view name) const;
    ChildElement* findUsage(const Fingerprint& usageKey) { return usages.find(usageKey); }

    /// Sets whether a repeated field is a table in each of its records, or only in the first, see RepeatedFields.
    void setTablesInAllParents(bool inAll) { tablesInAllParents = inAll; }

    /// Makes tables of usages that occurred more than once, then orders all used elements. A further call orders all of
    /// them anew. Throws Cancelled.
    void arrange();

    /// Places an element and everything linked to it, see TypeOrder.
    void place(const Element& element);

    /// Adds a single element to the order, whether it is there already or not; see TypeList::add().
    void addToOrder(Element* element) { order.add(element); }

    const TypeList& queryOrder() const { return order; }

private:
    // Declarations between two checks whether the user has cancelled.
    static constexpr unsigned kUsagesPerPoll = 4096;

    template <class... Parts>
    Element* make(Parts&... parts);
    Declared findOrMake(Name& path, Name& name, Element::ElementTypes type);
    Declared count(UsageTable::Declared usage, const Declared& element, Element* parent);
    Name& pathNamed(const CString& path);
    Element* makeTable(ChildElement& usage, Name& tableName, std::size_t position);
    void store(Element* element);
    void makeTables();

    // Elements, their lists and the keys of usages lie in the names' memory, which clear() frees as a whole.
    NamePool names;
    std::vector<Element*> ownedElements; // by number; includes elements replaced under their name
    UsageTable usages;
    TypeList order;
    bool mergesByName;
    bool tablesInAllParents = false;
    CancelPoint cancelPoint{kUsagesPerPoll};
};
