#pragma once

#include <atomic>
#include <memory>

struct FreeEnvironment
{
    void operator()(void* environment) const noexcept;
};
struct FreeConnection
{
    void operator()(void* connection) const noexcept; ///< disconnects first
};
struct DatabaseHandles;
struct FreeStatement
{
    const DatabaseHandles* database = nullptr;

    /// Leaves it to the end of a connection that has been given up: the driver would wait for the call in hand.
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
    std::atomic<bool> isGivenUp = false; // a call hasn't come back, and nobody waits for it any more
};

/// A statement and the connection that it runs on. Empty (false) when there is none.
struct OpenStatement
{
    std::shared_ptr<DatabaseHandles> database;
    StatementHandle handle;

    explicit operator bool() const { return handle != nullptr; }
};
