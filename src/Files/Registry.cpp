#include "Files/Registry.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace {

SettingsStore* currentStore = nullptr; // the store of the current transaction

bool queryValue(const char* key, const char* name, SettingsValue& value)
{
    // Outside of a transaction, each read sees the file as it is at that moment.
    return currentStore ? currentStore->getValue(key, name, value) : SettingsStore().getValue(key, name, value);
}

// Applies a change to the current transaction, or to the file at once. The file is read for each change, so that
// another program's changes are kept.
template <class Change>
bool change(Change set)
{
    if (currentStore != nullptr) {
        set(*currentStore);
        return true;
    }
    SettingsStore store;
    set(store);
    return store.save();
}

// Returns a value as an integer. A text is read as scanf's %d and %u read it: leading digits count, the rest is
// ignored. An integer is stored in little-endian order on every machine (SettingsValue).
std::uint32_t asInteger(const SettingsValue& value)
{
    if (value.type == SettingsValue::Type::text)
        return static_cast<std::uint32_t>(std::strtoll(value.bytes.c_str(), nullptr, 10));
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4 && i < value.bytes.size(); ++i)
        number |= std::uint32_t(static_cast<unsigned char>(value.bytes[i])) << (8 * i);
    return number;
}

} // namespace

bool Registry::setString(HKEY, const char* key, const char* name, char* value)
{
    return change([&](SettingsStore& store) { store.setText(key, name, value); });
}

bool Registry::setInt(HKEY, const char* key, const char* name, int value)
{
    return change([&](SettingsStore& store) { store.setInteger(key, name, value); });
}

bool Registry::getString(HKEY, const char* key, const char* name, char* buffer, int bufferSize)
{
    std::fill_n(buffer, bufferSize, '\0');
    SettingsValue value;
    if (!queryValue(key, name, value) || value.bytes.size() > static_cast<std::size_t>(std::max(bufferSize, 0)))
        return false;
    std::copy(value.bytes.begin(), value.bytes.end(), buffer);
    return true;
}

std::optional<CString> Registry::getText(const char* key, const CString& name)
{
    std::array<char, 260> text;
    const bool isThere = getString(HKEY_CURRENT_USER, key, name.c_str(), text.data(), text.size());
    return isThere ? std::optional<CString>(text.data()) : std::nullopt;
}

void Registry::setText(const char* key, const CString& name, CString text)
{
    setString(HKEY_CURRENT_USER, key, name.c_str(), text.data());
}

bool Registry::getUInt(HKEY, const char* key, const char* name, unsigned int& out)
{
    out = 0;
    SettingsValue value;
    if (!queryValue(key, name, value))
        return false;
    out = asInteger(value);
    return true;
}

bool Registry::getInt(HKEY root, const char* key, const char* name, int& out)
{
    unsigned int number = 0;
    const bool found = getUInt(root, key, name, number);
    out = static_cast<int>(number);
    return found;
}

std::vector<std::pair<CString, SettingsValue>> Registry::queryValues(HKEY, const char* key)
{
    return currentStore ? currentStore->queryValues(key) : SettingsStore().queryValues(key);
}

// `store` is declared first, so it has read the file before it becomes the current one.
SettingsTransaction::SettingsTransaction() : before(std::exchange(currentStore, &store)) {}

SettingsTransaction::~SettingsTransaction()
{
    currentStore = before;
    if (store.isChanged())
        store.save();
}
