#pragma once

#include "Base/ServerAddress.h"

/// Where a repository lies, and how its database is called on.
class Address
{
public:
    /// Reads "server:port". The server "local" is a database file of the user's own; every other one a PostgreSQL
    /// server. Raises std::invalid_argument for a text that is no such thing.
    explicit Address(const CString& text);

    /// True for the user's own file, which asks for no user and no password.
    bool isLocal() const;

    /// The connection string, without user and password. Makes the local file and its folder where there are none yet,
    /// for the user alone, unless that is only to be read; raises std::system_error where that fails.
    CString connectString(bool isForReading) const;

    /// False for a local file that nobody has made yet.
    bool isThere() const;

    /// The package that brings the driver.
    const char* driverPackage() const { return isLocal() ? "libsqliteodbc" : "odbc-postgresql"; }

private:
    ServerAddress address;
};
