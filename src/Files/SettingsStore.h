#pragma once

#include "Base/Text.h"

#include <memory>
#include <vector>

/// One value of the settings as the registry calls see it: its type and its bytes, a text with its terminating zero, a
/// 32-bit integer in little-endian order.
struct SettingsValue
{
    enum class Type
    {
        text,
        integer
    };

    Type type = Type::text;
    CString bytes;
};

/// The per-user settings, a JSON file with one object for each registry key and its values in the order in which they
/// were first written: `$XDG_CONFIG_HOME/typeforge/settings.json`, by default below ~/.config. A file that isn't there
/// or can't be read counts as empty; one that can't be parsed, has more than 4 MB or is no regular file does too, and
/// is kept aside as `settings.json.bad`. A text that is not UTF-8 is stored as {"latin-1": TEXT}, its bytes as
/// characters.
class SettingsStore
{
public:
    /// Reads the file.
    SettingsStore();
    ~SettingsStore();
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    bool hasKey(const CString& key) const;

    /// False when there is no such value. Anything that is neither text nor a 32-bit integer counts as none.
    bool getValue(const CString& key, const CString& name, SettingsValue& out) const;

    /// The key's values with their names, in order.
    std::vector<std::pair<CString, SettingsValue>> queryValues(const CString& key) const;

    void setText(const CString& key, const CString& name, const CString& value);
    void setInteger(const CString& key, const CString& name, std::int32_t value);

    /// True once a value has been set.
    bool isChanged() const;

    /// Writes the file whole, at once. False when that fails; the old file is then still there.
    bool save() const;

private:
    template <class Value>
    void set(const CString& key, const CString& name, Value&& value);

    struct Document;
    std::unique_ptr<Document> document;
};
