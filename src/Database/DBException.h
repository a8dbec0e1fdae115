#pragma once

#include "Base/Text.h"

#include <stdexcept>

/// Thrown if a call of a driver or the driver manager fails. what() is the driver's text with the SQLSTATE, fit to be
/// shown. Every function that reaches a database can throw it, because the connection runs in another process that can
/// end at any time.
class CDBException : public std::runtime_error
{
public:
    /// `state` is the SQLSTATE, `text` the driver's text. Errors of our own have the SQLSTATE that ODBC defines for
    /// such a case.
    CDBException(const CString& state, int nativeError, const CString& text);

    /// Returns the five characters of the SQLSTATE, in the ODBC 2 form where the versions differ (S1000, not HY000).
    const CString& queryState() const { return state; }

    /// Returns the driver's text without the SQLSTATE.
    const CString& queryText() const { return text; }

    /// Returns the database's own error number, 0 if it has none.
    int queryNativeError() const { return nativeError; }

    /// Returns whether another user or password may help. Not every driver sets the SQLSTATE for it, so the server's
    /// text is searched too, without the names in it (of hosts, users, databases).
    bool isLogonRefused() const;

    /// Throws the diagnostics of the last call on a handle. `handleKind` is an SQL_HANDLE constant. Call it right after
    /// the failure, because every call on the handle replaces the diagnostics.
    [[noreturn]] static void raise(short handleKind, void* handle);

private:
    CString state;
    CString text;
    int nativeError;
};

/// Returns a driver's text in a buffer, up to its zero. Trailing white space is removed, and an incomplete last
/// character if the text fills the buffer.
std::string_view driverText(const char* buffer, std::size_t capacity);
