#pragma once

#include "Platform/Database/ConnectString.h"
#include "Platform/Database/DBException.h"
#include "Platform/Database/DataSources.h"
#include "Platform/Text.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>

// ODBC over the driver manager unixODBC, whose headers stay inside this folder's sources. Names and texts go both ways
// as UTF-8, by the narrow calls: drivers lose names of the wide ones.

struct FreeEnvironment
{
    void operator()(void* environment) const noexcept;
};
struct FreeConnection
{
    void operator()(void* connection) const noexcept; ///< disconnects first
};
struct FreeStatement
{
    void operator()(void* statement) const noexcept;
};
using EnvironmentHandle = std::unique_ptr<void, FreeEnvironment>;
using ConnectionHandle = std::unique_ptr<void, FreeConnection>;
using StatementHandle = std::unique_ptr<void, FreeStatement>;

/// A new environment, of ODBC 2: drivers answer dates as 9, 10 and 11. Empty when there is none to give.
EnvironmentHandle allocateEnvironment();

/// The handles of a connection, which live as long as somebody works with them.
struct DatabaseHandles
{
    EnvironmentHandle environment; // above the connection, which has to go first
    ConnectionHandle connection;
};

/// A statement and the connection that it runs on. Empty (false) when there is none.
struct OpenStatement
{
    std::shared_ptr<DatabaseHandles> database;
    StatementHandle handle;

    explicit operator bool() const { return handle != nullptr; }
};

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
    void wait(std::function<void()> call);

    /// The connection for calls of ODBC; null when not open.
    void* handle() const { return handles ? handles->connection.get() : nullptr; }

    /// A new statement, empty when there is none to give.
    OpenStatement allocateStatement() const;

    /// A number that the driver tells of itself, by ODBC's code of the question; 0 when it doesn't.
    unsigned queryInfo(unsigned short question) const;

    /// How long any one statement may take.
    std::chrono::milliseconds patience = std::chrono::seconds(60);

private:
    std::shared_ptr<DatabaseHandles> handles;
};

/// A driver's text out of a buffer, up to its zero: without the white space that drivers end it with, and without the
/// last character where the buffer's end has cut it.
std::string_view driverText(const char* buffer, std::size_t capacity);
