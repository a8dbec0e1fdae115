#pragma once

#include <memory>

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
