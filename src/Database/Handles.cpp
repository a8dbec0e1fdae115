#include "Database/Handles.h"

#include <sql.h>
#include <sqlext.h>

void FreeEnvironment::operator()(void* environment) const noexcept
{
    SQLFreeEnv(environment);
}

void FreeConnection::operator()(void* connection) const noexcept
{
    SQLDisconnect(connection);
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
}

void FreeStatement::operator()(void* statement) const noexcept
{
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
}

EnvironmentHandle allocateEnvironment()
{
    SQLHENV raw = SQL_NULL_HENV;
    if (SQLAllocEnv(&raw) != SQL_SUCCESS)
        return {};
    return EnvironmentHandle(raw);
}
