#pragma once

#include "Base/Text.h"
#include "Database/DBException.h"
#include "Database/DriverProcess.h"

#include <chrono>
#include <memory>
#include <string_view>

struct TlsAttempt;

// ODBC over the driver manager unixODBC, whose headers stay inside this folder's sources. Names and texts go both ways
// as UTF-8, by the narrow calls: drivers lose names of the wide ones.

/// One open connection to a data source. Its driver works in a process of its own.
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
    /// tried. The driver asks nobody anything; a server that is silent for `loginPatience` counts as failed.
    bool Open(const CString& source, Access access = readOnly, const CString& logon = {});

    /// Disconnects, and leaves nothing in memory of what the driver knew. Does nothing when not open.
    void Close();

    bool IsOpen() const { return process != nullptr; }

    /// Runs one statement without parameters and leaves its result aside. Raises CDBException.
    void ExecuteSQL(const CString& sql);

    /// Sends a request to the driver's process and returns what its answer holds, see DriverRequest. Raises
    /// CDBException: also when there is no answer after `patience`, the driver has crashed or the server has gone. The
    /// connection is closed then. The same if the answer isn't wanted any more (isStillWanted()); then Cancelled is
    /// raised.
    CString call(std::string_view request);

    /// Whether tables have owners there, which most databases call schemas; and whether they have qualifiers, which are
    /// databases or files.
    bool hasOwners() const { return ownerUsage != 0; }
    bool hasQualifiers() const { return qualifierUsage != 0; }

    /// How long a server may take to answer a logon.
    std::chrono::seconds loginPatience{15};

    /// How long any one statement may take.
    std::chrono::milliseconds patience = std::chrono::seconds(60);

private:
    bool connect(const CString& words, Access access, const TlsAttempt& attempt);
    bool canConnect(const CString& words, Access access, const TlsAttempt& attempt);

    std::unique_ptr<DriverProcess> process; // null when not open
    std::int32_t ownerUsage = 0;            // in which statements the driver takes owners, as ODBC numbers them
    std::int32_t qualifierUsage = 0;
};
