#include "Database/Handles.h"

#include <sql.h>
#include <sqlext.h>

void FreeEnvironment::operator()(void* environment) const noexcept
{
    SQLFreeEnv(environment);
}

void FreeConnection::operator()(void* connection) const noexcept
{
    // Fails without harm if the connection was never opened.
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
    // SQLAllocEnv() sets ODBC 2 by itself. SQLAllocHandle() would need a further call for the version.
    if (SQLAllocEnv(&raw) != SQL_SUCCESS)
        return {};
    return EnvironmentHandle(raw);
}
