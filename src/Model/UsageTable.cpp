#include "Model/UsageTable.h"

#include <memory_resource>

UsageTable::Declared UsageTable::declare(const Fingerprint& key, Element* element, Element* parent)
{
    KeyedUsage* const known = byKey.find(key);
    if (!known) {
        ChildElement& made = usages.emplace_back(element, parent);
        store(key, made);
        return {&made, true};
    }
    if (!key.isEmpty()) {
        known->usage->addInstance();
        return {known->usage, false};
    }
    known->usage->element = element;
    known->usage->parent = parent;
    return {known->usage, true};
}

// Keys are computed once a record's name contains a ".", is empty or known. A name with a "." could equal the key of
// another record's field, and declare() treats an empty key differently. The fields of a record that is declared again
// are in several places of the list.
UsageTable::Declared UsageTable::declareRecord(Element* record, bool isAlone)
{
    if (isAlone)
        return {&usages.emplace_back(record, nullptr), true};
    Name& name = *record->name;
    if (!hasKeys && (name.text.empty() || name.recordUsage != Name::kNone || name.text.find('.') != CString::npos))
        makeKeys();
    if (hasKeys)
        return declare(name.text, record, nullptr);
    name.recordUsage = static_cast<std::uint32_t>(usages.size());
    return {&usages.emplace_back(record, nullptr), true};
}

// Without keys, the record has the field if the last usage of the field's name is behind that of the record.
UsageTable::Declared UsageTable::declareField(Element* field, Element* record)
{
    if (hasKeys)
        return declare(keyOf({field, record}), field, record);
    std::uint32_t& last = field->name->lastUsage;
    if (last != Name::kNone && last > record->name->recordUsage) {
        usages[last].addInstance();
        return {&usages[last], false};
    }
    last = static_cast<std::uint32_t>(usages.size());
    return {&usages.emplace_back(field, record), true};
}

void UsageTable::store(const Fingerprint& key, ChildElement& usage)
{
    usage.hasKey = true;
    byKey.store(std::pmr::polymorphic_allocator<>(&names.memory).new_object<KeyedUsage>(KeyedUsage{key, &usage}));
}

// Computes the keys of all usages. From then on, every lookup goes by key.
void UsageTable::makeKeys()
{
    hasKeys = true;
    for (ChildElement& usage : usages)
        if (!usage.hasKey)
            store(keyOf(usage), usage);
}

// Hashes the parts of the key one by one, because joining them would copy the record's name for each field.
Fingerprint UsageTable::keyOf(const ChildElement& usage) const
{
    const CString& name = usage.element->queryBaseName(); // the name before a field became a table
    if (!usage.parent)
        return name;
    return RunningHash(fieldPrefix).append(usage.parent->queryName()).append(".").append(name);
}

ChildElement* UsageTable::find(const Fingerprint& key)
{
    if (!hasKeys)
        makeKeys();
    KeyedUsage* const known = key.isEmpty() ? nullptr : byKey.find(key);
    return known ? known->usage : nullptr;
}

void UsageTable::clear()
{
    usages.clear();
    byKey.clear();
    hasKeys = false;
}
