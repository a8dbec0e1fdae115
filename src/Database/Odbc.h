#pragma once

#include "Base/Text.h"
#include "Database/DBException.h"
#include "Database/DriverProcess.h"

#include <chrono>
#include <memory>
#include <string_view>

struct TlsAttempt;

// ODBC through the driver manager unixODBC, whose headers stay inside this folder's sources. Names and texts are UTF-8
// in both directions and use the narrow functions, because drivers lose names in the wide ones.

/// One connection to a data source. Its driver runs in a process of its own. One thread may use it at a time. The
/// driver manager's cursor library is not used: it adds nothing to rows that are read forwards, and it may not be
/// installed.
class CDatabase
{
public:
    /// `readOnly` tells the driver that nothing will be changed (SQL_ATTR_ACCESS_MODE), which it may ignore, and keeps
    /// SQLite's driver from creating a missing file.
    enum Access
    {
        readOnly,
        readWrite
    };

    CDatabase() = default;
    ~CDatabase() { Close(); }
    CDatabase(const CDatabase&) = delete;
    CDatabase& operator=(const CDatabase&) = delete;

    /// Opens a data source by name, or by connection string if `source` contains '='. `logon` is appended, see
    /// logonText(). Returns false if the driver manager can't even try to connect; throws CDBException if the driver
    /// fails, or the server is silent for `loginTimeout`, or for `timeout` if the driver has no limit of its own. The
    /// driver never prompts. Closes an open connection first. The password in `logon` is copied into storage that is
    /// wiped; the caller wipes its own.
    bool Open(const CString& source, Access access = readOnly, const CString& logon = {});

    /// Disconnects and ends the driver's process, which frees all that the driver had in memory. Does nothing if not
    /// open.
    void Close();

    /// Returns whether there is a connection. A failed call() can close it.
    bool IsOpen() const { return process != nullptr; }

    /// Runs one statement without parameters and ignores its result. Throws CDBException.
    void ExecuteSQL(const CString& sql);

    /// Sends a request to the driver's process and returns the results, see DriverRequest. Throws CDBException on
    /// failure, std::bad_alloc if either process lacks memory, and Cancelled if the progress handler refuses. The
    /// connection is closed if the call was cancelled, took longer than `timeout`, the driver crashed or the server is
    /// gone.
    CString call(std::string_view request);

    /// Return whether tables have owners, which most databases call schemas, and qualifiers, which are databases or
    /// files.
    bool hasOwners() const { return ownerUsage != 0; }
    bool hasQualifiers() const { return qualifierUsage != 0; }

    /// Returns whether the driver is one for SQLite.
    bool isSqlite() const { return sqlite; }

    /// The time limit for a logon, which drivers enforce if they can. Has no effect on an open connection.
    std::chrono::seconds loginTimeout{15};

    /// The time limit for one statement, and for a logon.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);

private:
    // connect() makes one attempt and leaves the connection open or closed as it returns or throws. canConnect() leaves
    // it closed.
    bool connect(const CString& connection, Access access, const TlsAttempt& attempt);
    bool canConnect(const CString& connection, Access access, const TlsAttempt& attempt);

    std::unique_ptr<DriverProcess> process; // null if not open
    std::int32_t ownerUsage = 0;            // SQL_OWNER_USAGE: a bit for each kind of statement; 0: no owners
    std::int32_t qualifierUsage = 0;        // SQL_QUALIFIER_USAGE
    bool sqlite = false;
};
