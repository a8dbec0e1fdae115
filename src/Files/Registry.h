#pragma once

#include "Base/Text.h"
#include "Files/SettingsStore.h"

/// The hives that settings live in. There is one, the current user's.
enum HKEY
{
    HKEY_CURRENT_USER
};

/// Reads and writes single settings. Every operation answers true on success.
class Registry
{
public:
    bool setString(HKEY root, const char* key, const char* name, char* value);

    /// Fills `buffer` with a zero-terminated text, with zeros on failure. A value that doesn't fit, its terminating
    /// zero included, is a failure. The value's type is not checked.
    bool getString(HKEY root, const char* key, const char* name, char* buffer, int bufferSize);

    /// Sets `out` to 0 on failure. A text is read as a decimal number.
    bool getInt(HKEY root, const char* key, const char* name, int& out);
    bool getUInt(HKEY root, const char* key, const char* name, unsigned int& out);

    bool setInt(HKEY root, const char* key, const char* name, int value);

    /// Returns the values of a key with their names, in the order in which they were first stored.
    std::vector<std::pair<CString, SettingsValue>> queryValues(HKEY root, const char* key);
};

/// While it lives, settings are read from the file as it was at its start, with what was set since. What was set is
/// written at once when it goes, so that the settings are stored all together or not at all. Without one the file is
/// read for each value, and written for each.
class SettingsTransaction
{
public:
    SettingsTransaction();
    ~SettingsTransaction();
    SettingsTransaction(const SettingsTransaction&) = delete;
    SettingsTransaction& operator=(const SettingsTransaction&) = delete;

private:
    SettingsStore store;
    SettingsStore* before;
};
