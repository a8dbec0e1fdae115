#pragma once

#include "Model/Element.h"

#include <deque>
#include <utility>

/// The usages of a model, in the order in which their keys were first declared. A usage under a known key counts as
/// another instance of that one.
///
/// A record's key is its name; a field's key is a prefix of the importer, the record's name, "." and the field's name.
/// If no record's name contains a ".", two keys are equal only if their names are. As long as no record is declared
/// again either, keys are not computed at all: each name stores its last usage, and the fields of a record are declared
/// one after the other. A hash table of all usages was the most costly part of an import, because each field was a
/// cache miss.
class UsageTable
{
public:
    /// The result of declare(): the usage, and whether this call created it.
    using Declared = std::pair<ChildElement*, bool>;

    /// Keys lie in the memory of `names`, which must hold the names of all declared elements and outlive the table.
    UsageTable(NamePool& names, std::string_view fieldPrefix) : names(names), fieldPrefix(fieldPrefix) {}

    /// Declares a usage under a key. Of the usages with an empty key only the last is kept, in the place of the first;
    /// each of them counts as new.
    Declared declare(const Fingerprint& key, Element* element, Element* parent);

    /// Declares a top-level record. With `isAlone` it has no key, so another record of its name is a separate usage.
    Declared declareRecord(Element* record, bool isAlone);

    /// Declares a field of a record, which must be the last record declared.
    Declared declareField(Element* field, Element* record);

    /// Returns the usage of a key, null if there is none or the key is empty. The first call computes all keys.
    ChildElement* find(const Fingerprint& key);

    void clear();

    /// Returns all usages, in their order.
    std::deque<ChildElement>& query() { return usages; }

private:
    // A usage with its key, which is only kept as a hash, because its text can be as long as the source.
    struct KeyedUsage
    {
        Fingerprint key;
        ChildElement* usage;
    };

    void store(const Fingerprint& key, ChildElement& usage);
    void makeKeys();
    Fingerprint keyOf(const ChildElement& usage) const;

    NamePool& names;
    std::string_view fieldPrefix;
    std::deque<ChildElement> usages; // keeps their addresses
    KeyedTable<KeyedUsage, &KeyedUsage::key, Fingerprint> byKey;
    bool hasKeys = false; // true once all usages have keys
};
