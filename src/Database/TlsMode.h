#pragma once

#include "Base/Text.h"
#include "Database/DBException.h"

#include <vector>

/// One way to connect to a source, with or without TLS. At most two are made for one connection.
struct TlsAttempt
{
    CString attributes; ///< for the end of the connection string, where they override earlier ones

    /// True if the connection is closed at once, and only shows that the server takes the user over TLS.
    bool isProbe = false;

    /// Returns whether to try this way after the one before it failed with `error`. Call it for a second attempt only.
    bool mayHelp(const CDBException& error) const;
};

/// Returns the ways to connect that a source's SSLmode allows, best first. The mode comes from the connection string or
/// the data source, else from the environment variable PGSSLMODE, else it is "prefer". Every driver that can is asked
/// to prefer TLS. Throws CDBException for a mode that libpq doesn't know if the driver is PostgreSQL's or MariaDB's,
/// and for an SSLmode that requires TLS if the driver isn't known to respect it. Only these two drivers are held to
/// what PGSSLMODE requires.
std::vector<TlsAttempt> tlsAttempts(const CString& connection);
