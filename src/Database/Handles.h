#pragma once

#include <memory>

// Owners of ODBC handles. A handle must be freed before the one that it was allocated from. ODBC's headers stay out of
// this one, so handles are void pointers.
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

/// Returns a new ODBC 2 environment, in which drivers report date types as 9, 10 and 11. Null if the driver manager
/// can't allocate one.
EnvironmentHandle allocateEnvironment();
