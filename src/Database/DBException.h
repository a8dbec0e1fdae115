#pragma once

#include "Base/Text.h"

#include <stdexcept>

/// What a driver or the driver manager said of a call that failed. what() is the driver's text with the SQLSTATE, fit
/// to be shown.
class CDBException : public std::runtime_error
{
public:
    CDBException(const CString& state, int nativeError, const CString& text);

    /// The five characters of the SQLSTATE; those of ODBC 2 where the versions differ (S1000, not HY000).
    const CString& queryState() const { return state; }

    /// What was said, without the SQLSTATE.
    const CString& queryText() const { return text; }

    /// The database's own number of the error, 0 where it has none.
    int queryNativeError() const { return nativeError; }

    /// True when another user or password may help. Not every driver has the SQLSTATE for it, so the server's words
    /// count too; names in them (of hosts, users, databases) don't.
    bool isLogonRefused() const;

    /// Throws what is known of the last call on a handle, of the kind that ODBC numbers 1 to 4. It has to be the next
    /// thing done with the handle: every call replaces the diagnostics.
    [[noreturn]] static void raise(short handleKind, void* handle);

private:
    CString state;
    CString text;
    int nativeError;
};

/// A driver's text out of a buffer, up to its zero: without the white space that drivers end it with, and without the
/// last character where the buffer's end has cut it.
std::string_view driverText(const char* buffer, std::size_t capacity);
