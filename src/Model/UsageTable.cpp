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

// Keys are computed once a record's name contains a "." or is empty. A name with a "." could equal the key of another
// record's field, and declare() treats an empty key differently.
UsageTable::Declared UsageTable::declareRecord(Element* record, bool isAlone)
{
    current = nullptr;
    if (isAlone)
        return {&usages.emplace_back(record, nullptr), true};
    Name& name = *record->name;
    if (!hasKeys && (name.text.empty() || name.text.find('.') != CString::npos))
        makeKeys();
    if (hasKeys)
        return declare(name.text, record, nullptr);
    if (name.recordUsage != Name::kNone) {
        usages[name.recordUsage].addInstance();
        reopen(name);
        return {&usages[name.recordUsage], false};
    }
    current = record;
    name.recordUsage = static_cast<std::uint32_t>(usages.size());
    return {&usages.emplace_back(record, nullptr), true};
}

UsageTable::Declared UsageTable::declareField(Element* field, Element* record)
{
    if (hasKeys)
        return declare(keyOf({field, record}), field, record);
    if (ChildElement* const known = findField(*field, *record)) {
        known->addInstance();
        return {known, false};
    }
    field->name->lastUsage = static_cast<std::uint32_t>(usages.size());
    ChildElement* const made = &usages.emplace_back(field, record);
    // A record that is declared again has fields in several places of the list, so all of them are entered in
    // `reopened`.
    if (record->name->isReopened)
        reopened.emplace(Pair(record->name, field->name), made);
    return {made, true};
}

void UsageTable::store(const Fingerprint& key, ChildElement& usage)
{
    usage.hasKey = true;
    byKey.store(std::pmr::polymorphic_allocator<>(&names.memory).new_object<KeyedUsage>(KeyedUsage{key, &usage}));
}

// Returns the known usage of a field in a record, null if there is none. The fields of a record are declared one after
// the other, so if it has the field, the last usage of the field's name is in this record: behind the usage of the
// record, if that is new. Only a record that is declared again is an exception.
ChildElement* UsageTable::findField(const Element& field, const Element& record)
{
    const std::uint32_t last = field.name->lastUsage;
    if (&record == current)
        return last != Name::kNone && last > record.name->recordUsage ? &usages[last] : nullptr;
    if (last != Name::kNone && usages[last].parent->name == record.name)
        return &usages[last];
    if (!record.name->isReopened)
        return nullptr;
    const auto known = reopened.find({record.name, field.name});
    return known == reopened.end() ? nullptr : known->second;
}

// Moves the fields of a repeated record to `reopened`, because later records may have replaced the last usage of their
// names.
void UsageTable::reopen(Name& record)
{
    if (record.isReopened)
        return;
    record.isReopened = true;
    for (std::size_t i = record.recordUsage + 1; i < usages.size(); ++i) {
        ChildElement& usage = usages[i];
        if (!usage.parent || usage.parent->name != &record)
            break;
        if (!usage.hasKey) // constants have keys
            reopened.emplace(Pair(&record, usage.element->name), &usage);
    }
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
    reopened.clear();
    hasKeys = false;
    current = nullptr;
}
