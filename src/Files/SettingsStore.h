#pragma once

#include "Base/Text.h"

#include <memory>
#include <vector>

/// One value of the settings as the registry calls see it: its type and its bytes. A text has its terminating zero, an
/// integer is 32 bits in little-endian order.
struct SettingsValue
{
    /// The types that the program writes.
    enum class Type
    {
        text,
        integer
    };

    Type type = Type::text;
    CString bytes;
};

/// The per-user settings: the JSON file `$XDG_CONFIG_HOME/typeforge/settings.json`, by default below ~/.config. It
/// holds one object for each registry key, with values in the order in which they were first written. A missing or
/// unreadable file counts as empty. A file that can't be parsed, is larger than 4 MB or is not a regular file counts as
/// empty too, and is renamed to `settings.json.bad`, with a message to the user. A text that is not UTF-8 is stored as
/// {"latin-1": TEXT}, its bytes as characters. JSON, so that a person can read and repair it. An object is a snapshot:
/// it doesn't see changes by other programs, and save() writes all of its values, also those that it has not set.
class SettingsStore
{
public:
    /// Reads the file.
    SettingsStore();
    ~SettingsStore();
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    /// Reads a value. Returns false if it doesn't exist, or is neither a text nor a 32-bit integer. A Boolean counts as
    /// 0 or 1.
    bool getValue(const CString& key, const CString& name, SettingsValue& out) const;

    /// Returns the key's values with their names, in order.
    std::vector<std::pair<CString, SettingsValue>> queryValues(const CString& key) const;

    /// Sets a value in memory; save() writes it. Creates the key if needed. A value that exists keeps its place in the
    /// order.
    void setText(const CString& key, const CString& name, const CString& value);
    void setInteger(const CString& key, const CString& name, std::int32_t value);

    /// Returns whether a value has been set since the file was read.
    bool isChanged() const;

    /// Replaces the file in one step. Returns false on failure; the old file then stays. Creates the folder if it is
    /// missing.
    bool save() const;

private:
    template <class Value>
    void set(const CString& key, const CString& name, Value&& value);

    // Behind a pointer, because the header of the JSON library is slow to compile.
    struct Document;
    std::unique_ptr<Document> document;
};
