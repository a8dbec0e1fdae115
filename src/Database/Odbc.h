#pragma once

#include "Base/Text.h"
#include "Database/DBException.h"
#include "Database/DriverThread.h"
#include "Database/Handles.h"

#include <chrono>
#include <functional>

// ODBC over the driver manager unixODBC, whose headers stay inside this folder's sources. Names and texts go both ways
// as UTF-8, by the narrow calls: drivers lose names of the wide ones.

/// One open connection to a data source.
class CDatabase
{
public:
    enum Access
    {
        readOnly,
        readWrite
    };

    CDatabase() = default;
    ~CDatabase() { Close(); }
    CDatabase(const CDatabase&) = delete;
    CDatabase& operator=(const CDatabase&) = delete;

    /// Opens a data source by its name, or by a whole connection string when `source` holds a '='. `logon` is added to
    /// it, see logonText(). A driver that fails raises CDBException; false is left for a connection that can't even be
    /// tried. The driver asks nobody anything; a server that is silent for 15 seconds counts as failed.
    bool Open(const CString& source, Access access = readOnly, const CString& logon = {});

    /// Disconnects, and leaves nothing in memory of what the driver knew. Does nothing when not open.
    void Close();

    bool IsOpen() const { return handles != nullptr; }

    /// Runs one statement without parameters and leaves its result aside. Raises CDBException.
    void ExecuteSQL(const CString& sql);

    /// Runs a call of the driver that may wait for the server. When it is not back after `patience`, the connection is
    /// given up, as if closed, and CDBException raised; `call` then goes on for itself, so it owns all that it touches.
    /// The same when it isn't wanted any more (isStillWanted()); then Cancelled is raised.
    void wait(std::function<void()> call);

    /// The connection for calls of ODBC; null when not open.
    void* handle() const { return handles ? handles->connection.get() : nullptr; }

    /// A new statement, empty when there is none to give.
    OpenStatement allocateStatement() const;

    /// A number that the driver tells of itself, by ODBC's code of the question; 0 when it doesn't.
    unsigned queryInfo(unsigned short question) const;

    /// Whether tables have owners there, which most databases call schemas.
    bool hasOwners() const;

    /// How long any one statement may take.
    std::chrono::milliseconds patience = std::chrono::seconds(60);

private:
    void callDriver(std::function<void()> call);

    DriverThread driver;
    std::shared_ptr<DatabaseHandles> handles; // below the driver's thread, which ends when they have gone
};
