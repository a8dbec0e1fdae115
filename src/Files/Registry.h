#pragma once

#include "Base/Text.h"
#include "Files/SettingsStore.h"

#include <optional>

/// The roots of the settings. There is one, the current user's.
enum HKEY
{
    HKEY_CURRENT_USER
};

/// Reads and writes single settings. Every operation that returns bool returns true on success. The interface is that
/// of the registry calls that pages and other people's code use. SettingsStore holds the values.
class Registry
{
public:
    /// Stores a text. Fails if the settings can't be written.
    bool setString(HKEY root, const char* key, const char* name, char* value);

    /// Fills `buffer` with a zero-terminated text. Fails, with zeros in `buffer`, if the value doesn't exist or doesn't
    /// fit, terminating zero included. `bufferSize` is in bytes. The value's type is not checked.
    bool getString(HKEY root, const char* key, const char* name, char* buffer, int bufferSize);

    /// Returns a text of the current user of at most 259 bytes; nothing if there is none. A longer one counts as
    /// missing.
    std::optional<CString> getText(const char* key, const CString& name);

    /// Stores a text of the current user. A failure is not reported.
    void setText(const char* key, const CString& name, CString text);

    /// Reads a number into `out`, which is 0 on failure. A text is read as a decimal number. Returns false if there is
    /// no value. A text without digits gives 0 and true.
    bool getInt(HKEY root, const char* key, const char* name, int& out);
    bool getUInt(HKEY root, const char* key, const char* name, unsigned int& out);

    /// Stores a number. Fails if the settings can't be written.
    bool setInt(HKEY root, const char* key, const char* name, int value);

    /// Returns the values of a key with their names, in the order in which they were first stored. Unlike getText(), it
    /// has no limit on the length.
    std::vector<std::pair<CString, SettingsValue>> queryValues(HKEY root, const char* key);
};

/// A transaction on the settings. While it lives, all reads see the file as it was at the start, plus the changes
/// since. The destructor writes the changes at once, so that all of them are stored or none; a failure is not reported.
/// Without a transaction, each read and each write accesses the file. Transactions must not be nested: the outer one
/// would write its older state over the changes of the inner one. Use transactions and Registry in one thread only,
/// because the current transaction is a global variable.
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
