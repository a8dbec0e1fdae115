#pragma once

#include "Base/ServerAddress.h"

/// The address of a repository and the connection string of its database. A port is required for "local", too, where it
/// has no effect.
class Address
{
public:
    /// Reads "server:port". The server "local" means a database file of the user; any other name is a PostgreSQL
    /// server. Throws std::invalid_argument for any other text.
    explicit Address(const CString& text);

    /// Returns whether this is the user's own file, which needs no user and password. A host of that name can still be
    /// reached by its address.
    bool isLocal() const;

    /// Returns the connection string, without user and password. Creates a missing local file and its folder, private
    /// to the user, unless `isForReading`. Throws std::system_error if that fails.
    CString connectString(bool isForReading) const;

    /// Returns false for a local file that does not exist yet, else true. Throws std::runtime_error if the user has no
    /// home folder.
    bool exists() const;

    /// Returns the name of Debian's package with the driver.
    const char* driverPackage() const { return isLocal() ? "libsqliteodbc" : "odbc-postgresql"; }

private:
    ServerAddress address;
};
