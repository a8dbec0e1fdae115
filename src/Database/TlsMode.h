#pragma once

#include "Base/Text.h"
#include "Database/DBException.h"

#include <vector>

/// A way of connecting to a source with TLS, or without.
struct TlsAttempt
{
    CString words; ///< for the end of the connection string, where they count more than those in front

    /// Whether a connection that comes about is closed again, and only tells that the server takes the user over TLS.
    bool isProbe = false;

    /// Whether this way is worth trying where the one before it has ended in `error`.
    bool mayHelp(const CDBException& error) const;
};

/// The ways to connect that a source's SSLmode leaves, the best one first: SSLmode of the connection string or of the
/// data source's entry, else the variable PGSSLMODE, else "prefer". Each driver that can gets TLS preferred. One that
/// can't be told to require TLS is never connected without it. Raises CDBException for a mode that isn't known, or that
/// the driver isn't known to keep.
std::vector<TlsAttempt> tlsAttempts(const CString& connection);
