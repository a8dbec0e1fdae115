#pragma once

#include "Model/Element.h"

#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

/// The usages of a model, in the order in which their keys were first declared. A usage declared under a key that is
/// known counts as one more instance of the known one.
///
/// The key of a record is its name; the key of a field is the record's name, "." and the field's name, behind a prefix
/// of the importer. As long as no record's name has a "." in it, two such keys are equal only if their names are. Then
/// they are not made at all: the last usage of each name is kept with it, and fields of one record come in a row.
class UsageTable
{
public:
    /// What declare() returns: the usage, and whether it was made by this call.
    using Declared = std::pair<ChildElement*, bool>;

    /// Usages lie in the memory of `names`, which has the names of all elements that are declared.
    UsageTable(NamePool& names, std::string_view fieldPrefix) : names(names), fieldPrefix(fieldPrefix) {}

    /// Declares a usage under a key. The empty key is never known: its last usage stands in the place of the first.
    Declared declare(const Fingerprint& key, Element* element, Element* parent);

    /// Declares a record at the top. One that `isAlone` has no key.
    Declared declareRecord(Element* record, bool isAlone);

    /// Declares a field of a record. Fields belong to the record that was declared last.
    Declared declareField(Element* field, Element* record);

    /// The usage of a key, or null. Null for the empty key.
    ChildElement* find(const Fingerprint& key);

    /// Makes room for so many usages at once.
    void reserve(std::size_t count) { usages.reserve(count); }

    void clear();

    std::span<ChildElement* const> query() const { return usages; }

private:
    using Pair = std::pair<const Name*, const Name*>;
    struct PairHash
    {
        std::size_t operator()(const Pair& pair) const;
    };

    ChildElement* append(const Fingerprint& key, Element* element, Element* parent);
    ChildElement* findField(const Element& field, const Element& record) const;
    void reopen(Name& record);
    void makeKeys();
    Fingerprint keyOf(const ChildElement& usage) const;

    NamePool& names;
    std::string_view fieldPrefix;
    std::vector<ChildElement*> usages;
    KeyedTable<ChildElement, &ChildElement::queryUsageKey, Fingerprint> byKey;
    std::unordered_map<Pair, ChildElement*, PairHash> reopened; // fields of records that were declared more than once
    bool hasKeys = false;                                       // all usages have keys
};
